#include "tests/desktop/StatusItemUser.h"

#include "platform/desktop/linux/StatusNotifierTypes.h"
#include "platform/desktop/linux/TrayBus.h"
#include "platform/desktop/linux/TrayText.h"
#include "tests/desktop/EventLoop.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <utility>

namespace orvello {

StatusItemUser::StatusItemUser()
    : host_(TrayBus::sessionAddress()) {
    registerDBusMenuTypes();
    registerStatusNotifierTypes();
}

void StatusItemUser::showTray() {
    if (!host_.hasHost())
        host_.appear(true);
}

void StatusItemUser::hideTray() {
    host_.vanish();
    open_ = false;
    earlier_ = host_.registrations.size();
}

bool StatusItemUser::openMenu() {
    if (!findItem())
        return false;
    tell(0, QStringLiteral("opened"));
    open_ = true;
    return true;
}

void StatusItemUser::closeMenu() {
    if (std::exchange(open_, false))
        tell(0, QStringLiteral("closed"));
}

bool StatusItemUser::choose(const std::string& title) {
    if (!open_ && !openMenu())
        return false;
    const auto label = menuLabel(title, u'_');
    const auto reply = host_.callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
    const auto layout = qdbus_cast<DBusMenuLayout>(reply.arguments().value(1));
    for (const auto& entry : layout.children) {
        const auto property = [&](const char* name) { return entry.properties.value(QLatin1String(name)); };
        if (property("label") != label || property("enabled") == false || property("visible") == false)
            continue;
        tell(entry.id, QStringLiteral("clicked"));
        closeMenu();
        return true;
    }
    return false;
}

std::optional<std::string> StatusItemUser::shownImage() {
    if (!findItem())
        return "";
    const auto icon = qdbus_cast<QList<IconPixmap>>(
        host_.property(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.kde.StatusNotifierItem"),
                       QStringLiteral("IconPixmap")));
    if (icon.isEmpty())
        return "";
    for (const char* name :
         {"TMRotatingArrow", "TMRotatingArrowAlternate", "TMBackingUp", "TMBackingUpAlternate"})
        if (iconPixmapFrom(images_.image(QLatin1String(name), icon[0].width)).pixels == icon[0].pixels)
            return name;
    return std::nullopt;
}

bool StatusItemUser::findItem() {
    return host_.hasHost() && waitUntil([this] { return host_.registrations.size() > earlier_; });
}

void StatusItemUser::tell(int entry, const QString& event) {
    host_.callMenu(QStringLiteral("Event"), {entry, event, QVariant::fromValue(QDBusVariant(QString())), 0U});
}

} // namespace orvello
