// Draws an SVG file as a square picture of plain pixels: rows from the top, four bytes each, red, green, blue
// and alpha, premultiplied. Use: draw_icon SVG SIDE PICTURE
#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdlib>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return EXIT_FAILURE;
    const int side = arguments[2].toInt();
    QSvgRenderer drawing(arguments[1]);
    QFile picture(arguments[3]);
    if (side <= 0 || !drawing.isValid() || !picture.open(QIODevice::WriteOnly))
        return EXIT_FAILURE;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    image.convertTo(QImage::Format_RGBA8888_Premultiplied); // has no padding at the ends of rows
    const auto* pixels = reinterpret_cast<const char*>(image.constBits());
    return picture.write(pixels, image.sizeInBytes()) == image.sizeInBytes() && picture.flush()
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}
