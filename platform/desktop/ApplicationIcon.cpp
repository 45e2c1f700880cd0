#include "platform/desktop/ApplicationIcon.h"

#include "platform/desktop/DesktopImages.h"

namespace orvello {

QIcon applicationIcon() {
    return DesktopImages().icon(QStringLiteral("org.orvello.Orvello"));
}

} // namespace orvello
