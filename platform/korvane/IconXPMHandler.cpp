#include <korvane/IconXPMHandler.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPalette>
#include <QPixmap>

#include <map>
#include <set>

namespace {

// Only plain names reach the resource system, so "../" or an absolute path cannot pick an
// image that is not one of the host's.
bool isPlainName(const QString& name)
{
    if (name.isEmpty())
        return false;
    for (const QChar c : name) {
        if (c.unicode() >= 128 || !(c.isLetterOrNumber() || c == QLatin1Char('_')))
            return false;
    }
    return true;
}

} // namespace

struct IconXPMHandler::Private
{
    struct Entry
    {
        QPixmap pixmap;
        bool loaded = false;
    };

    // std::map never moves its elements, which is what keeps the handed-out pointers valid.
    std::map<QString, Entry> entries;

    Private() { live().insert(this); }

    ~Private()
    {
        live().erase(this);
        // The library may be unloaded before the application goes; Qt must not call into it then.
        if (live().empty() && teardownHooked()) {
            qRemovePostRoutine(&releaseAll);
            teardownHooked() = false;
        }
    }

    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    void load(Entry& entry, const QString& name, const QString& variant)
    {
        if (!teardownHooked()) {
            qAddPostRoutine(&releaseAll);
            teardownHooked() = true;
        }
        if (isPlainName(name))
            entry.pixmap.load(QStringLiteral(":/korvane%1.png").arg(variant.arg(name)));
        entry.loaded = true;
    }

    // Pixmaps must not outlive the GUI they were made for. Qt runs post routines while the
    // application object still exists, the last moment a QPixmap may be assigned without a
    // warning. The entries stay, so pointers held by callers remain valid; they show null
    // pixmaps until a new application loads them again.
    static void releaseAll()
    {
        teardownHooked() = false;
        for (Private* handler : live()) {
            for (auto& item : handler->entries) {
                item.second.pixmap = QPixmap();
                item.second.loaded = false;
            }
        }
    }

    static std::set<Private*>& live()
    {
        static std::set<Private*> handlers;
        return handlers;
    }

    static bool& teardownHooked()
    {
        static bool hooked = false;
        return hooked;
    }
};

IconXPMHandler::IconXPMHandler() : d(new Private)
{
}

IconXPMHandler::~IconXPMHandler()
{
    delete d;
}

QPixmap* IconXPMHandler::getPixmap(const QString& name)
{
    if (!qGuiApp)
        return &d->entries[name].pixmap;
    // The set under ":/korvane-dark/" is drawn for dark rows; "@2x" images carry twice the pixels.
    const QPalette palette = QGuiApplication::palette();
    const bool dark = palette.color(QPalette::Base).lightnessF() < palette.color(QPalette::Text).lightnessF();
    const bool dense = qGuiApp->devicePixelRatio() > 1.0;
    const QString variant = QString(dark ? QStringLiteral("-dark/%1") : QStringLiteral("/%1"))
                            + (dense ? QStringLiteral("@2x") : QString());
    // The plain drawing keeps the name as its key: the pointer handed out before the application
    // existed is the one it loads into.
    Private::Entry& entry = d->entries[dark || dense ? variant.arg(name) : name];
    if (!entry.loaded)
        d->load(entry, name, variant);
    return &entry.pixmap;
}

namespace {
IconXPMHandler processHandler;
} // namespace

IconXPMHandler* iconHandler = &processHandler;
