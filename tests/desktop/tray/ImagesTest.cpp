#include "platform/desktop/DesktopImages.h"
#include "platform/desktop/linux/StatusNotifierTypes.h"

#include <QDir>
#include <QImageReader>
#include <QPainter>

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace Qt::StringLiterals;

TEST(DesktopImages, AreTheDrawingsInTheSizeAskedFor) {
    const DesktopImages images;
    const auto files = QDir(u":/icons"_s).entryInfoList({u"*.svg"_s});
    ASSERT_FALSE(files.isEmpty());
    for (const auto& file : files) {
        for (const int side : {16, 17, 22, 24, 32, 48, 64}) { // all but 17 drawn by the build for the tray
            QImageReader drawing(file.filePath());
            drawing.setScaledSize({side, side});
            EXPECT_EQ(images.image(file.completeBaseName(), side), drawing.read())
                << file.fileName().toStdString() << " " << side;
        }
    }
    EXPECT_TRUE(images.image(u"NoSuchImage"_s, 22).isNull());

    // Icons are sharp at any pixel ratio.
    QImage screen(32, 32, QImage::Format_ARGB32_Premultiplied);
    screen.setDevicePixelRatio(2);
    screen.fill(Qt::transparent);
    QPainter painter(&screen);
    images.icon(u"TMRotatingArrow"_s).paint(&painter, 0, 0, 16, 16);
    painter.end();
    screen.setDevicePixelRatio(1);
    EXPECT_EQ(screen, images.image(u"TMRotatingArrow"_s, 32));
}

TEST(IconPixmap, IsInNetworkByteOrderAndNotPremultiplied) {
    QImage image(1, 2, QImage::Format_ARGB32);
    image.setPixel(0, 0, 0x80ff0000);
    image.setPixel(0, 1, 0xffaabbcc);
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    EXPECT_EQ(iconPixmapFrom(image).pixels, QByteArray::fromHex("80ff0000ffaabbcc"));
}

} // namespace
} // namespace orvello
