#include "platform/desktop/linux/AutostartLoginItem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <fmt/format.h>

namespace orvello {

namespace {

/// The program's own desktop file with another command to run.
QByteArray desktopFileRunning(const std::string& exec) {
    QFile installed(QStringLiteral(":/org.orvello.Orvello.desktop"));
    QByteArray text;
    if (!installed.open(QIODevice::ReadOnly))
        return text;
    while (!installed.atEnd()) {
        const auto line = installed.readLine();
        text += line.startsWith("Exec=") ? QByteArray::fromStdString("Exec=" + exec + '\n') : line;
    }
    return text;
}

} // namespace

AutostartLoginItem::AutostartLoginItem(const std::string& folder, std::string program)
    : folder_(folder)
    , file_(folder + "/org.orvello.Orvello.desktop")
    , program_(std::move(program)) {}

bool AutostartLoginItem::setEnabled(bool enabled) {
    const auto file = QFile::decodeName(file_.c_str());
    if (!enabled) {
        const QFileInfo info(file);
        return (!info.exists() && !info.isSymLink()) || QFile::remove(file);
    }
    const auto exec = desktopEntryExec(program_, "launchAtLogin");
    if (exec.empty() || !QDir().mkpath(QFile::decodeName(folder_.c_str())))
        return false;
    const auto text = desktopFileRunning(exec);
    QSaveFile replacement(file);
    return !text.isEmpty() && replacement.open(QIODevice::WriteOnly) &&
           replacement.write(text) == text.size() && replacement.commit();
}

std::string AutostartLoginItem::userFolder() {
    const auto config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QFile::encodeName(config).toStdString() + "/autostart";
}

std::string desktopEntryExec(std::string_view program, std::string_view argument) {
    if (program.find('=') != std::string_view::npos)
        return {};
    // Two layers: inside the quotation marks a backslash goes before " ` $ and \, and in every value of a
    // desktop file a backslash is written as two. A percent sign would begin a field code.
    std::string exec = "\"";
    for (const char c : program) {
        switch (c) {
        case '"':
        case '`':
        case '$':
            exec += R"(\\)";
            exec += c;
            break;
        case '\\':
            exec += R"(\\\\)";
            break;
        case '%':
            exec += "%%";
            break;
        case '\n':
            exec += "\\n";
            break;
        case '\t':
            exec += "\\t";
            break;
        case '\r':
            exec += "\\r";
            break;
        default:
            exec += c;
        }
    }
    return fmt::format("{}\" {}", exec, argument);
}

} // namespace orvello
