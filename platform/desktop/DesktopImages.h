#pragma once

#include <QIcon>
#include <QImage>
#include <QString>

#include <memory>

namespace orvello {

/// The program's named images, from the resources ":/icons/<name>.svg". Each is drawn once per size, by the
/// build where ":/icons/<name>-<pixels>.rgba" is there, and kept.
class DesktopImages {
  public:
    DesktopImages();
    ~DesktopImages();
    DesktopImages(const DesktopImages&) = delete;
    DesktopImages& operator=(const DesktopImages&) = delete;

    /// A square image with sides of that many device pixels; a null image if no image has the name.
    QImage image(const QString& name, int pixels) const;

    /// An icon that is drawn at the size and pixel ratio it is shown at; an empty one if no image has the
    /// name.
    QIcon icon(const QString& name) const;

  private:
    class Cache;
    class Engine;
    std::shared_ptr<Cache> cache_;
};

} // namespace orvello
