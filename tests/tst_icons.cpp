// The icons as the program sees them: the PNGs compiled into the libraries and the host's handler.

#include <fast/panel/CheckConnectionToFastWorker.h>
#include <fast/panel/PanelIcons_p.h>
#include <korvane/IconXPMHandler.h>

#include <QtTest>

#include <cmath>
#include <numeric>

namespace {

const QStringList kHostIcons = {"help24", "projectopen24", "down_ko", "down_ok", "delete24"};
const QStringList kLibraryIcons = kHostIcons + QStringList{"bluware24"};

// Premultiplied, so that transparent pixels compare equal whatever colour they hold.
QVector<QRgb> pixels(const QImage& image)
{
    const QImage premultiplied = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const auto* first = reinterpret_cast<const QRgb*>(premultiplied.constBits()); // rows unpadded
    return QVector<QRgb>(first, first + static_cast<std::ptrdiff_t>(image.width()) * image.height());
}

QImage libraryImage(const QString& name, const QString& set = "light", const QString& scale = QString())
{
    return QImage(":/" + set + "/" + name + scale + ".png").convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(0x2b, 0x2b, 0x2b));
    palette.setColor(QPalette::Text, Qt::white);
    return palette;
}

// Whether this run draws at twice the density (ctest runs it also with QT_SCALE_FACTOR=2).
bool dense()
{
    return qApp->devicePixelRatio() > 1.0;
}

double distance(QRgb p, QRgb q)
{
    return std::hypot(std::hypot(qRed(p) - qRed(q), qGreen(p) - qGreen(q)),
                      std::hypot(qBlue(p) - qBlue(q), qAlpha(p) - qAlpha(q)));
}

// How different two images look, transparency included; images of different sizes differ entirely.
double meanPixelDistance(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return qInf();
    const QVector<QRgb> p = pixels(a), q = pixels(b);
    return std::inner_product(p.begin(), p.end(), q.begin(), 0.0, std::plus<>(), distance) / p.size();
}

// The colour an icon reads as from a distance: shrinking a premultiplied image to one pixel
// averages its colours weighted by alpha.
QRgb meanColour(const QImage& image)
{
    const QImage pixel = image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return pixel.convertToFormat(QImage::Format_ARGB32).pixel(0, 0) | 0xff000000;
}

} // namespace

class IconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Nothing else of the library is used here, and a linker may drop a library no symbol is taken from.
    void initTestCase() { QVERIFY(fast::CheckConnectionToFastWorker::staticMetaObject.className()); }

    // Each drawing is 24 pixels, at least a quarter opaque and not to the edge, unlike every other;
    // in each set at 24 and 48 pixels from one source: the 48-pixel one the same artwork, the
    // one for dark rows the same shapes, lighter.
    void libraryIconsAreDistinctDrawingsDenseAndForDarkRows()
    {
        const auto alphas = [](const QImage& image) {
            QVector<int> result;
            for (const QRgb p : pixels(image))
                result << qAlpha(p);
            return result;
        };
        for (const QString& name : kLibraryIcons) {
            const QImage light = libraryImage(name), dark = libraryImage(name, "dark");
            const QVector<int> alpha = alphas(light);
            // A blank, a box filled edge to edge, or a drawing shrunk far inside its box fail here.
            QVERIFY2(alpha.count(255) >= 24 * 24 / 4 && alpha.count(0) >= 1, qPrintable(name));
            for (const QString& other : kLibraryIcons.mid(kLibraryIcons.indexOf(name) + 1))
                QVERIFY2(meanPixelDistance(light, libraryImage(other)) > 40, qPrintable(name + " looks like " + other));
            QVERIFY2(QColor(meanColour(dark)).lightnessF() > QColor(meanColour(light)).lightnessF() + 0.1,
                     qPrintable(name));
            QCOMPARE(alphas(dark), alpha);
            for (const QString set : {"light", "dark", "korvane", "korvane-dark"}) {
                if (name == "bluware24" && set.startsWith("korvane"))
                    continue;
                const QImage plain = libraryImage(name, set);
                const QImage twice = libraryImage(name, set, "@2x");
                QVERIFY2(plain.size() == QSize(24, 24) && twice.size() == QSize(48, 48), qPrintable(set + name));
                QCOMPARE(twice.devicePixelRatio(), 2.0);
                const QImage halved = twice.scaled(24, 24, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
                QVERIFY2(meanPixelDistance(halved, plain) < 20, qPrintable(set + name));
            }
        }
        // The two mount states share a shape on purpose; they must still tell apart in a dense
        // list, where the icon may be shown at half size.
        const QImage ok = libraryImage("down_ok").scaledToWidth(12, Qt::SmoothTransformation);
        const QImage ko = libraryImage("down_ko").scaledToWidth(12, Qt::SmoothTransformation);
        QVERIFY(distance(meanColour(ok), meanColour(ko)) > 100 && meanPixelDistance(ok, ko) > 70);
    }

    // The trees take the drawing for their rows' palette and density; the host's handler for the
    // application's, and keeps each pixmap where it handed it out: callers keep the pointers.
    void theTreesAndTheHostTakeTheImageForTheirRowsAndDensity()
    {
        const QPixmap plain = fast::panelIcon("down_ko", QPalette(Qt::white), 1.0);
        const QPixmap sharp = fast::panelIcon("down_ko", QPalette(Qt::white), 1.5);
        QVERIFY(fast::isDarkPalette(darkPalette()) && !fast::isDarkPalette(QPalette(Qt::white)));
        QVERIFY(plain.size() == QSize(24, 24) && sharp.size() == QSize(48, 48) && sharp.devicePixelRatio() == 2.0);
        QCOMPARE(meanPixelDistance(fast::panelIcon("down_ko", darkPalette(), 2.0).toImage(),
                                   libraryImage("down_ko", "dark", "@2x")),
                 0.0);
        QVERIFY(fast::panelIcon("nosuchicon", darkPalette(), 2.0).isNull());

        if (qEnvironmentVariable("QT_SCALE_FACTOR") == "2")
            QVERIFY(dense());
        const QString scale = dense() ? "@2x" : "";
        QPixmap* first = iconHandler->getPixmap(kHostIcons.first());
        for (const QString& name : kHostIcons) {
            QPixmap* pixmap = iconHandler->getPixmap(name);
            // The host's set is the library's artwork under the same name, not another icon.
            const QImage image = pixmap->toImage();
            QVERIFY2(meanPixelDistance(image, libraryImage(name, "korvane", scale)) == 0
                         && meanPixelDistance(image, libraryImage(name, "light", scale)) < 1,
                     qPrintable(name));
            QCOMPARE(pixmap->devicePixelRatio(), dense() ? 2.0 : 1.0);
            QCOMPARE(iconHandler->getPixmap(name), pixmap);
        }
        const QPalette original = QGuiApplication::palette();
        QGuiApplication::setPalette(darkPalette());
        QPixmap* dark = iconHandler->getPixmap("down_ko");
        QGuiApplication::setPalette(original);
        QVERIFY(dark != iconHandler->getPixmap("down_ko"));
        QCOMPARE(meanPixelDistance(dark->toImage(), libraryImage("down_ko", "korvane-dark", scale)), 0.0);

        for (int i = 0; i < 50; ++i)
            iconHandler->getPixmap(QStringLiteral("filler%1").arg(i));
        QVERIFY(iconHandler->getPixmap(kHostIcons.first()) == first && !first->isNull());
        for (const char* name : {"nosuchicon", "bluware24", "../light/bluware24"}) {
            QPixmap* pixmap = iconHandler->getPixmap(name);
            QVERIFY2(pixmap && pixmap->isNull() && iconHandler->getPixmap(name) == pixmap, name);
        }
    }
};

QTEST_MAIN(IconsTest)
#include "tst_icons.moc"
