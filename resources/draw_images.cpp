// Part of the build: draws the images at the sizes that screens mostly ask for, so that the program
// need not do it at each start. Usage: draw_images FOLDER IMAGE.svg... Writes FOLDER/NAME-SIDE, the
// premultiplied ARGB pixels of an image in rows from the top, and FOLDER/drawn.qrc, which lists
// them.
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace {

// Pixels: 12, 16 and 24, which the program uses, on screens of 100, 125, 150 and 200 %.
constexpr int sSides[] = {12, 15, 16, 18, 20, 24, 30, 32, 36, 48};
constexpr int sIconSides[] = {64, 128}; // of the program's icon, besides; window managers want them

void x_write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        std::fprintf(stderr, "draw_images: cannot write %s\n", qPrintable(path));
        std::exit(EXIT_FAILURE);
    }
}

QByteArray x_draw(QSvgRenderer &renderer, int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter, QRect(0, 0, side, side));
    painter.end();
    return {reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes()};
}

QList<int> x_sides(const QString &image)
{
    QList<int> sides(std::begin(sSides), std::end(sSides));
    if (image == QLatin1String("tav"))
        std::copy(std::begin(sIconSides), std::end(sIconSides), std::back_inserter(sides));
    return sides;
}

} // namespace

int main(int argc, char **argv)
{
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    QByteArray list = "<RCC><qresource prefix=\"/drawn\">\n";
    for (int i = 2; i < argc; i++) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        QSvgRenderer renderer(path);
        if (!renderer.isValid()) {
            std::fprintf(stderr, "draw_images: cannot draw %s\n", argv[i]);
            return EXIT_FAILURE;
        }
        const QString image = QFileInfo(path).baseName();
        for (const int side : x_sides(image)) {
            const QString name = image + QLatin1Char('-') + QString::number(side);
            x_write(folder + QLatin1Char('/') + name, x_draw(renderer, side));
            list += "<file>" + name.toLatin1() + "</file>\n";
        }
    }
    x_write(folder + QStringLiteral("/drawn.qrc"), list + "</qresource></RCC>\n");
    return EXIT_SUCCESS;
}
