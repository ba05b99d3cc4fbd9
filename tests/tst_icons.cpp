// The icons as the program sees them: the PNGs compiled into the libraries and the host's handler.

#include <fast/panel/CheckConnectionToFastWorker.h>
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

QImage libraryImage(const QString& name)
{
    return QImage(":/light/" + name + ".png").convertToFormat(QImage::Format_ARGB32_Premultiplied);
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

    void libraryIconsAreDistinct24PixelDrawings()
    {
        for (const QString& name : kLibraryIcons) {
            const QImage image = libraryImage(name);
            const QVector<QRgb> all = pixels(image);
            const auto opaque = std::count_if(all.begin(), all.end(), [](QRgb p) { return qAlpha(p) == 255; });
            const auto clear = std::count_if(all.begin(), all.end(), [](QRgb p) { return qAlpha(p) == 0; });
            // A blank, a box filled edge to edge, or a drawing shrunk far inside its box fail here.
            QVERIFY2(image.size() == QSize(24, 24) && opaque >= 24 * 24 / 4 && clear >= 1, qPrintable(name));
            for (const QString& other : kLibraryIcons.mid(kLibraryIcons.indexOf(name) + 1))
                QVERIFY2(meanPixelDistance(image, libraryImage(other)) > 40, qPrintable(name + " looks like " + other));
        }
    }

    // The two mount states share a shape on purpose; they must still tell apart in a dense list,
    // where the icon may be shown at half size.
    void mountStatesTellApartAtTwelvePixels()
    {
        const QImage ok = libraryImage("down_ok").scaledToWidth(12, Qt::SmoothTransformation);
        const QImage ko = libraryImage("down_ko").scaledToWidth(12, Qt::SmoothTransformation);
        QVERIFY2(distance(meanColour(ok), meanColour(ko)) > 100, "mean colours too close");
        QVERIFY2(meanPixelDistance(ok, ko) > 70, "pixels too close");
    }

    void hostHandlerKeepsItsIcons()
    {
        QPixmap* first = iconHandler->getPixmap(kHostIcons.first());
        for (const QString& name : kHostIcons) {
            QPixmap* pixmap = iconHandler->getPixmap(name);
            // The library's artwork under the same name, not another icon.
            QVERIFY2(pixmap && meanPixelDistance(pixmap->toImage(), libraryImage(name)) < 1, qPrintable(name));
            QCOMPARE(iconHandler->getPixmap(name), pixmap);
        }
        // Later lookups must not move earlier pixmaps: callers keep the pointers.
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
