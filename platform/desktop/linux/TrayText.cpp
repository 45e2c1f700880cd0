#include "platform/desktop/linux/TrayText.h"

namespace orvello {

QString menuLabel(const std::string& title, QChar mnemonic) {
    QString label;
    for (const QChar character : QString::fromStdString(title)) {
        label += character.category() == QChar::Other_Control ? QChar(u' ') : character;
        if (character == mnemonic)
            label += mnemonic;
    }
    return label;
}

} // namespace orvello
