// The icons as the program sees them: the PNGs compiled into the libraries and the host's handler.

#include <fast/panel/CheckConnectionToFastWorker.h>
#include <fast/panel/PanelIcons_p.h>
#include <korvane/IconXPMHandler.h>

#include <QtTest>

#include <cmath>
#include <numeric>

namespace {

const QStringList kHostIcons = {"help24", "projectopen24", "down_ko", "down_ok", "delete24"};

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

} // namespace

class IconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Nothing else of the library is used here, and a linker may drop a library no symbol is taken from.
    void initTestCase() { QVERIFY(fast::CheckConnectionToFastWorker::staticMetaObject.className()); }

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
