#include "platform/desktop/linux/DBusMenu.h"

#include "platform/desktop/linux/TrayText.h"

#include <QDBusError>
#include <QGuiApplication>

#include <algorithm>
#include <utility>

namespace orvello {

using namespace Qt::StringLiterals;

namespace {

constexpr int rootId = 0;

int idOf(std::size_t index, const MenuItem& item) {
    return 2 * static_cast<int>(index) + (item.isChecked() ? 2 : 1);
}

QVariantMap describe(const MenuItem& item) {
    QVariantMap properties{{u"visible"_s, !item.isHidden()}};
    if (item.isSeparator()) {
        properties.insert(u"type"_s, u"separator"_s);
        return properties;
    }
    properties.insert(u"label"_s, menuLabel(item.title(), u'_'));
    properties.insert(u"enabled"_s, item.isEnabled());
    if (item.isChecked()) {
        properties.insert(u"toggle-type"_s, u"checkmark"_s);
        properties.insert(u"toggle-state"_s, 1);
    }
    return properties;
}

} // namespace

DBusMenu::DBusMenu(MenuHostTimes times)
    : times_(times) {
    registerDBusMenuTypes();
    expiry_.setSingleShot(true);
    expiry_.setInterval(times_.silence);
    connect(&expiry_, &QTimer::timeout, this, &DBusMenu::close);
}

DBusMenu::~DBusMenu() {
    setMenu(nullptr);
}

void DBusMenu::setMenu(Menu* menu) {
    close();
    if (menu_)
        menu_->removeObserver(this);
    menu_ = menu;
    if (menu_)
        menu_->addObserver(this);
    changedItems_.clear();
    sendSoon();
}

QString DBusMenu::textDirection() const {
    return QGuiApplication::isRightToLeft() ? u"rtl"_s : u"ltr"_s;
}

bool DBusMenu::isKnown(int id) const {
    return id == rootId || itemFor(id);
}

MenuItem* DBusMenu::itemFor(int id) const {
    if (!menu_ || id <= rootId)
        return nullptr;
    const auto index = static_cast<std::size_t>((id - 1) / 2);
    return index < menu_->items().size() ? menu_->items()[index].get() : nullptr;
}

QVariantMap DBusMenu::propertiesOf(int id, const QStringList& names) const {
    const auto* item = itemFor(id);
    auto properties = item ? describe(*item) : QVariantMap{{u"children-display"_s, u"submenu"_s}};
    if (!names.isEmpty())
        properties.removeIf([&names](const auto& property) { return !names.contains(property.key()); });
    return properties;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                         DBusMenuLayout& layout) {
    heardFromHost();
    if (!isKnown(parentId)) {
        refuse(parentId);
        return 0;
    }
    sendChanges();
    layout = {parentId, propertiesOf(parentId, propertyNames), {}};
    if (parentId != rootId || recursionDepth == 0)
        return revision_;
    for (const int id : exportedIds_)
        layout.children.append({id, propertiesOf(id, propertyNames), {}});
    return revision_;
}

QList<DBusMenuItem> DBusMenu::GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames) {
    heardFromHost();
    sendChanges();
    QList<DBusMenuItem> answer;
    if (!ids.isEmpty()) {
        for (const int id : ids)
            if (isKnown(id))
                answer.append({id, propertiesOf(id, propertyNames)});
        return answer;
    }
    answer.append({rootId, propertiesOf(rootId, propertyNames)});
    for (const int id : exportedIds_)
        answer.append({id, propertiesOf(id, propertyNames)});
    return answer;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) {
    const auto value = propertiesOf(id, {name}).value(name);
    if (!isKnown(id) || !value.isValid()) {
        refuse(id);
        return QDBusVariant(QString());
    }
    return QDBusVariant(value);
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant& /*data*/, uint /*timestamp*/) {
    if (!handle(id, eventId))
        refuse(id);
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent>& events) {
    QList<int> unknown;
    for (const auto& event : events)
        if (!handle(event.id, event.event))
            unknown.append(event.id);
    if (!events.isEmpty() && unknown.size() == events.size())
        refuse(unknown.first());
    return unknown;
}

bool DBusMenu::AboutToShow(int id) {
    if (!isKnown(id)) {
        refuse(id);
        return false;
    }
    return id == rootId && aboutToShow();
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    QList<int> updatesNeeded;
    for (const int id : ids) {
        if (!isKnown(id))
            idErrors.append(id);
        else if (id == rootId && aboutToShow())
            updatesNeeded.append(id);
    }
    if (!ids.isEmpty() && idErrors.size() == ids.size())
        refuse(idErrors.first());
    return updatesNeeded;
}

bool DBusMenu::handle(int id, const QString& eventId) {
    heardFromHost();
    if (!isKnown(id))
        return false;
    if (id == rootId) {
        // A host that also sends AboutToShow has had the entries validated by that.
        if (eventId == "opened"_L1 && menu_ && !menu_->isOpen())
            open();
        else if (eventId == "closed"_L1)
            close();
        return true;
    }
    if (eventId == "clicked"_L1) {
        close();
        // Later, since the host waits for its answer and the action may wait for the user.
        QMetaObject::invokeMethod(
            this,
            [this, menu = menu_, id] {
                if (auto* item = menu == menu_ ? itemFor(id) : nullptr)
                    menu_->choose(*item);
            },
            Qt::QueuedConnection);
    }
    return true;
}

bool DBusMenu::aboutToShow() {
    if (!menu_ || menu_->isOpen() || fetch_.hasExpired())
        return open();
    sendChanges();
    menu_->open();
    menu_->close();
    return sendChanges();
}

bool DBusMenu::open() {
    if (!menu_)
        return false;
    sendChanges();
    openByHost_ = true;
    expiry_.start();
    menu_->open();
    const bool entriesChanged = sendChanges();
    Q_EMIT openChanged();
    return entriesChanged;
}

void DBusMenu::close() {
    if (!openByHost_)
        return;
    release();
    menu_->close();
    Q_EMIT openChanged();
}

void DBusMenu::release() {
    openByHost_ = false;
    expiry_.stop();
}

void DBusMenu::heardFromHost() {
    if (openByHost_)
        expiry_.start();
}

void DBusMenu::menuItemChanged(MenuItem& item) {
    const auto& items = menu_->items();
    const auto found =
        std::find_if(items.begin(), items.end(), [&item](const auto& entry) { return entry.get() == &item; });
    changedItems_.insert(static_cast<std::size_t>(found - items.begin()));
    sendSoon();
}

void DBusMenu::sendSoon() {
    if (!std::exchange(sendPending_, true))
        QMetaObject::invokeMethod(
            this,
            [this] {
                sendPending_ = false;
                sendChanges();
            },
            Qt::QueuedConnection);
}

bool DBusMenu::sendChanges() {
    QList<DBusMenuItem> updated;
    for (const auto index : std::exchange(changedItems_, {})) {
        const int id = idOf(index, *menu_->items()[index]);
        updated.append({id, propertiesOf(id, {})});
    }
    std::vector<int> ids;
    for (std::size_t index = 0; menu_ && index < menu_->items().size(); ++index)
        ids.push_back(idOf(index, *menu_->items()[index]));
    const bool otherLayout = ids != exportedIds_;
    if (otherLayout) {
        exportedIds_ = std::move(ids);
        Q_EMIT LayoutUpdated(++revision_, rootId);
    }
    if (!updated.isEmpty())
        Q_EMIT ItemsPropertiesUpdated(updated, {});
    return otherLayout || !updated.isEmpty();
}

void DBusMenu::refuse(int id) const {
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, u"The menu has no entry %1 with that property"_s.arg(id));
}

} // namespace orvello
