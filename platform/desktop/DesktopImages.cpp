#include "platform/desktop/DesktopImages.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvello {

namespace {

/// What the build has drawn at that size; null where it has not.
QImage drawnBefore(const QString& name, int pixels) {
    QFile file(QStringLiteral(":/icons/%1-%2.rgba").arg(name).arg(pixels));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QImage image(pixels, pixels, QImage::Format_RGBA8888_Premultiplied);
    if (file.read(reinterpret_cast<char*>(image.bits()), image.sizeInBytes()) != image.sizeInBytes())
        return {};
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Has Qt's plugin for SVG draw, which so is loaded only when it is needed.
QImage drawNow(const QString& name, int pixels) {
    QImageReader reader(QStringLiteral(":/icons/%1.svg").arg(name), "svg");
    reader.setScaledSize({pixels, pixels});
    return reader.read();
}

} // namespace

class DesktopImages::Cache {
  public:
    QImage image(const QString& name, int pixels) {
        const auto key = std::pair(name, pixels);
        auto found = images_.find(key);
        if (found == images_.end()) {
            const QImage drawn = drawnBefore(name, pixels);
            found = images_.insert(key, drawn.isNull() ? drawNow(name, pixels) : drawn);
        }
        return *found;
    }

  private:
    QHash<std::pair<QString, int>, QImage> images_;
};

class DesktopImages::Engine final : public QIconEngine {
  public:
    Engine(std::shared_ptr<Cache> cache, QString name)
        : cache_(std::move(cache))
        , name_(std::move(name)) {}

    QIconEngine* clone() const override { return new Engine(*this); }

    QPixmap pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return QPixmap::fromImage(cache_->image(name_, std::min(size.width(), size.height())));
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const qreal ratio = painter->device()->devicePixelRatio();
        const int side = std::min(rect.width(), rect.height());
        QImage image = cache_->image(name_, static_cast<int>(std::lround(side * ratio)));
        image.setDevicePixelRatio(ratio);
        QRect square(0, 0, side, side);
        square.moveCenter(rect.center());
        painter->drawImage(square.topLeft(), image);
    }

  private:
    std::shared_ptr<Cache> cache_;
    QString name_;
};

DesktopImages::DesktopImages()
    : cache_(std::make_shared<Cache>()) {}

DesktopImages::~DesktopImages() = default;

QImage DesktopImages::image(const QString& name, int pixels) const {
    return cache_->image(name, pixels);
}

QIcon DesktopImages::icon(const QString& name) const {
    return QIcon(new Engine(cache_, name));
}

} // namespace orvello
