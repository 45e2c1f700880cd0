#include "app/ZRAppDelegate.h"
#include "platform/Formatters.h"
#include "platform/StatusItem.h"
#include "platform/UserDefaults.h"
#include "settings/SettingsKeys.h"
#include "statusmenu/StatusMenu.h"

namespace orvello {

bool ZRAppDelegate::updateMenuStatus() {
    const auto update = mapStatusMenu(
        {.status = BackupStatus(),
         .nextBackup = nextBackupDateMenuString,
         .lastBackup = platform_.userDefaults.dateForKey(key::LastBackup).value_or(neverDate()),
         .dateText = [this](Date date) { return dateFormatter ? dateFormatter->stringFromDate(date) : "-"; },
         .byteText =
             [this](std::int64_t bytes) {
                 return byteFormatter ? byteFormatter->stringFromByteCount(bytes) : "-";
             }},
        statusMenuState());
    showStatusMenuState(update.state);
    RunTimeMachineItem()->setValidated(update.enable);
    for (const auto& call : update.statistics) {
        switch (call.kind) {
        case StatisticsCall::Kind::SetFilesCopied:
            setFilesCopied(call.count);
            break;
        case StatisticsCall::Kind::SetBytesCopied:
            setBytesCopied(call.count);
            break;
        case StatisticsCall::Kind::Flush:
            flushStatistic();
            break;
        }
    }
    return update.enable;
}

StatusMenuState ZRAppDelegate::statusMenuState() const {
    StatusMenuState state{.backupTitle = RunTimeMachineItem()->title(),
                          .backupEnabled = RunTimeMachineItem()->enabledFlag(),
                          .lines = {},
                          .icons = shownIcons};
    for (std::size_t i = 0; i < state.lines.size(); ++i)
        state.lines.at(i) = {statusLines().at(i)->title(), statusLines().at(i)->isHidden()};
    return state;
}

void ZRAppDelegate::showStatusMenuState(const StatusMenuState& state) {
    RunTimeMachineItem()->setTitle(state.backupTitle);
    RunTimeMachineItem()->setEnabled(state.backupEnabled);
    for (std::size_t i = 0; i < state.lines.size(); ++i) {
        statusLines().at(i)->setTitle(state.lines.at(i).title);
        statusLines().at(i)->setHidden(state.lines.at(i).hidden);
    }
    if (state.icons != shownIcons)
        showIcons(state.icons);
}

void ZRAppDelegate::showIcons(IconPair icons) {
    const bool busy = icons == IconPair::Busy;
    statusItem->setImage(busy ? "TMBackingUp" : "TMRotatingArrow");
    statusItem->setAlternateImage(busy ? "TMBackingUpAlternate" : "TMRotatingArrowAlternate");
    shownIcons = icons;
}

std::array<MenuItem*, 5> ZRAppDelegate::statusLines() const {
    return {StatusLine2(), StatusLine3(), StatusLine4(), StatusLine5(), StatusLine6()};
}

} // namespace orvello
