#include "platform/desktop/DesktopWorkspace.h"

#include "platform/Log.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>

#include <fmt/format.h>

#include <utility>

namespace orvello {

QUrl ProductSite::page(const QString& path) const {
    if (!host.isEmpty())
        return {QStringLiteral("http://") + host + path, QUrl::StrictMode};
    for (const auto& copy : copies) {
        const auto file = QDir::cleanPath(copy + path + QStringLiteral("/index.html"));
        if (QFileInfo(file).isFile())
            return QUrl::fromLocalFile(file);
    }
    return {};
}

ProductSite ProductSite::ofProgram(const QString& folder) {
    const QDir program(folder);
    return {.host = QStringLiteral(ORVELLO_WEB_HOST),
            .copies = {program.filePath(QStringLiteral(ORVELLO_SITE_FROM_PROGRAM)),
                       program.filePath(QStringLiteral("site"))}}; // the last one in the folder of a build
}

DesktopWorkspace::DesktopWorkspace(Log& log, ProductSite site)
    : log_(log)
    , site_(std::move(site)) {}

void DesktopWorkspace::openWebPage(const std::string& path) {
    const auto address = site_.page(QString::fromStdString(path));
    if (!address.isValid())
        log_.line(fmt::format("No page {} is installed", path));
    else if (!QDesktopServices::openUrl(address))
        log_.line(fmt::format("No program opens {}", address.toString().toStdString()));
}

void DesktopWorkspace::launchApplication(const std::string& path) {
    const auto file = QString::fromStdString(path);
    if (!QFileInfo::exists(file))
        log_.line(fmt::format("No application at {}", path));
    else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        log_.line(fmt::format("No program opens {}", path));
}

} // namespace orvello
