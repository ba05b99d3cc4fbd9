// Renders one SVG icon to a square PNG, as drawn ("light", for light rows) or lifted for dark rows
// ("dark": every colour keeps its hue and saturation and moves to the light half of the
// lightness scale, so that the same artwork stands out from a near-black row as the original
// does from a white one). Runs at build time, so it must work without a display:
// it uses no application object at all, because the raster paint engine, the SVG renderer and
// the PNG writer need none, and a platform plugin would be one more way for the build to fail.

#include <QColor>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QString>
#include <QSvgRenderer>

#include <cstdio>

namespace {

int fail(const QString& message)
{
    std::fprintf(stderr, "icon-renderer: %s\n", qPrintable(message));
    return 1;
}

// The lightness floor of the dark variant: above it, colours keep at least 3:1 against the dark
// palettes' rows (about #2b2b2b and #424242).
constexpr double kDarkLightnessFloor = 0.55;

QImage liftedForDarkRows(const QImage& drawn)
{
    QImage image = drawn.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = QColor::fromRgba(line[x]).toHsl();
            const double lightness = kDarkLightnessFloor + (1.0 - kDarkLightnessFloor) * colour.lightnessF();
            line[x] = QColor::fromHslF(colour.hslHueF(), colour.hslSaturationF(), lightness, colour.alphaF()).rgba();
        }
    }
    return image;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 4 && argc != 5) {
        std::fprintf(stderr, "Usage: icon-renderer IN.svg OUT.png SIZE [light|dark]\n");
        return 2;
    }
    const QString variant = argc == 5 ? QString::fromLocal8Bit(argv[4]) : QStringLiteral("light");
    if (variant != QLatin1String("light") && variant != QLatin1String("dark"))
        return fail(QStringLiteral("the variant is light or dark, not '%1'").arg(variant));
    const QString input = QString::fromLocal8Bit(argv[1]);
    const QString output = QString::fromLocal8Bit(argv[2]);
    bool sizeOk = false;
    const int size = QString::fromLocal8Bit(argv[3]).toInt(&sizeOk);
    // The upper bound only guards against a typo turning into a huge allocation.
    if (!sizeOk || size < 1 || size > 4096)
        return fail(QStringLiteral("SIZE must be a whole number from 1 to 4096, not '%1'")
                        .arg(QString::fromLocal8Bit(argv[3])));

    QSvgRenderer svg(input);
    if (!svg.isValid())
        return fail(QStringLiteral("cannot read '%1' as SVG").arg(input));

    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        svg.render(&painter);
    }
    if (variant == QLatin1String("dark"))
        image = liftedForDarkRows(image);

    if (!QDir().mkpath(QFileInfo(output).absolutePath()))
        return fail(QStringLiteral("cannot create the folder of '%1'").arg(output));
    // A half-written PNG must never look up to date to the build, so write it aside and rename.
    QSaveFile file(output);
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG") || !file.commit())
        return fail(QStringLiteral("cannot write '%1'").arg(output));
    return 0;
}
