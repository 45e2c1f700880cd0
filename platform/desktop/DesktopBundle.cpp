#include "platform/desktop/DesktopBundle.h"

#include <QFile>

#include <fmt/format.h>

namespace orvello {

std::optional<std::string> DesktopBundle::resource(std::string_view name, std::string_view type) const {
    QFile file(QString::fromStdString(fmt::format(":/{}.{}", name, type)));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll().toStdString();
}

} // namespace orvello
