#include "platform/desktop/DesktopImages.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvello {

namespace {

QImage draw(const QString& name, int pixels) {
    const QString path = QStringLiteral(":/icons/%1.svg").arg(name);
    if (!QFile::exists(path))
        return {};
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

} // namespace

class DesktopImages::Cache {
  public:
    QImage image(const QString& name, int pixels) {
        const auto key = std::pair(name, pixels);
        auto found = images_.find(key);
        if (found == images_.end())
            found = images_.insert(key, draw(name, pixels));
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
