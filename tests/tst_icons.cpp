// The icons as the program sees them: the PNGs compiled into the libraries and the host's handler.

#include <fast/panel/CheckConnectionToFastWorker.h>
#include <korvane/IconXPMHandler.h>

#include <QFile>
#include <QImage>
#include <QPixmap>
#include <QtTest>

#include <cmath>

namespace {

const QStringList hostIcons = {"help24", "projectopen24", "down_ko", "down_ok", "delete24"};
const QStringList libraryIcons = hostIcons + QStringList{"bluware24"};

QImage libraryImage(const QString& name)
{
    return QImage(QStringLiteral(":/light/%1.png").arg(name)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

double distance(QRgb p, QRgb q)
{
    const double dr = qRed(p) - qRed(q), dg = qGreen(p) - qGreen(q);
    const double db = qBlue(p) - qBlue(q), da = qAlpha(p) - qAlpha(q);
    return std::sqrt(dr * dr + dg * dg + db * db + da * da);
}

// How different two premultiplied images of one size look, transparency included.
double meanPixelDistance(const QImage& a, const QImage& b)
{
    double total = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            total += distance(a.pixel(x, y), b.pixel(x, y));
    return total / (a.width() * a.height());
}

// The colour an icon reads as from a distance: its premultiplied pixels averaged by alpha.
QRgb meanColour(const QImage& image)
{
    double r = 0, g = 0, b = 0, alpha = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            r += qRed(p), g += qGreen(p), b += qBlue(p), alpha += qAlpha(p) / 255.0;
        }
    }
    return qRgb(int(r / alpha), int(g / alpha), int(b / alpha));
}

} // namespace

class TestIcons : public QObject
{
    Q_OBJECT

private slots:
    // A program shows these icons through the library's widgets, which makes it load the library.
    // This test uses nothing else of it, and a linker may drop a library no symbol is taken
    // from, so it takes one.
    void initTestCase() { QVERIFY(fast::CheckConnectionToFastWorker::staticMetaObject.className() != nullptr); }

    void libraryIconsAreDistinct24PixelDrawings()
    {
        for (const QString& name : libraryIcons) {
            QVERIFY2(QFile::exists(QStringLiteral(":/light/%1.png").arg(name)), qPrintable(name));
            const QImage image = libraryImage(name);
            QCOMPARE(image.size(), QSize(24, 24));
            int opaque = 0, clear = 0;
            for (int y = 0; y < 24; ++y) {
                for (int x = 0; x < 24; ++x) {
                    opaque += qAlpha(image.pixel(x, y)) == 255;
                    clear += qAlpha(image.pixel(x, y)) == 0;
                }
            }
            // A blank, a box filled edge to edge, or a drawing shrunk far inside its box fail here.
            QVERIFY2(opaque >= 24 * 24 / 4 && clear >= 1, qPrintable(name));
            for (const QString& other : libraryIcons.mid(libraryIcons.indexOf(name) + 1))
                QVERIFY2(meanPixelDistance(image, libraryImage(other)) > 40, qPrintable(name + " looks like " + other));
        }
    }

    // The two mount states share a shape on purpose; they must still tell apart in a dense list,
    // where the icon may be shown at half size.
    void mountStatesTellApartAtTwelvePixels()
    {
        const auto small = [](const char* name) {
            return libraryImage(name).scaledToWidth(12, Qt::SmoothTransformation);
        };
        const QImage ok = small("down_ok"), ko = small("down_ko");
        QVERIFY2(distance(meanColour(ok), meanColour(ko)) > 100, "mean colours too close");
        QVERIFY2(meanPixelDistance(ok, ko) > 70, "pixels too close");
    }

    void hostHandlerKeepsItsIcons()
    {
        QPixmap* first = iconHandler->getPixmap(hostIcons.first());
        for (const QString& name : hostIcons) {
            QPixmap* pixmap = iconHandler->getPixmap(name);
            QVERIFY2(pixmap && !pixmap->isNull(), qPrintable(name));
            // The library's artwork under the same name, not another icon.
            const QImage image = pixmap->toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
            QVERIFY2(image.size() == QSize(24, 24) && meanPixelDistance(image, libraryImage(name)) < 1, qPrintable(name));
            QCOMPARE(iconHandler->getPixmap(name), pixmap);
        }
        // Later lookups must not move earlier pixmaps: callers keep the pointers.
        for (int i = 0; i < 50; ++i)
            iconHandler->getPixmap(QStringLiteral("filler%1").arg(i));
        QCOMPARE(iconHandler->getPixmap(hostIcons.first()), first);
        QVERIFY(!first->isNull());

        for (const char* name : {"nosuchicon", "bluware24", "../light/bluware24"}) {
            QPixmap* pixmap = iconHandler->getPixmap(name);
            QVERIFY2(pixmap && pixmap->isNull(), name);
            QCOMPARE(iconHandler->getPixmap(name), pixmap);
        }
    }
};

QTEST_MAIN(TestIcons)
#include "tst_icons.moc"
