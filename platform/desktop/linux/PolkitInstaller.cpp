#include "platform/desktop/linux/PolkitInstaller.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace orvello {

PolkitInstaller::PolkitInstaller(QStringList shippedTools, QStringList commandFolders)
    : shippedTools_(std::move(shippedTools))
    , commandFolders_(std::move(commandFolders)) {}

PolkitInstaller::~PolkitInstaller() {
    if (!process_)
        return;
    // Before it is authorised, pkexec can be ended like any process of the user's, and the dialogue vanishes.
    // Afterwards it belongs to the administrator and ends by itself within moments; the destructor of
    // QProcess would wait for that.
    constexpr int patience = 200; // ms
    process_->disconnect(this);
    process_->kill();
    if (process_->waitForFinished(patience))
        process_.reset();
    else
        static_cast<void>(process_.release());
    cleanUp();
}

void PolkitInstaller::install(const std::string& path, ToolInstallerDelegate& delegate) {
    if (delegate_)
        return;
    delegate_ = &delegate;
    target_ = QFile::decodeName(path.c_str());
    QMetaObject::invokeMethod(this, &PolkitInstaller::begin, Qt::QueuedConnection);
}

QStringList PolkitInstaller::placesOfShippedTool() {
    const QDir program(QCoreApplication::applicationDirPath());
    QStringList places;
    for (const char* place : {"tmutil", "../libexec/orvello/tmutil", "../lib/orvello/tmutil",
                              "tmutil/tmutil"}) // the last one in the folder of a build
        places.append(QDir::cleanPath(program.filePath(QString::fromLatin1(place))));
    return places;
}

void PolkitInstaller::begin() {
    const auto shipped = std::find_if(shippedTools_.cbegin(), shippedTools_.cend(), [](const auto& place) {
        const QFileInfo file(place);
        return file.isFile() && file.isExecutable();
    });
    if (shipped == shippedTools_.cend()) {
        source_ = shippedTools_.value(0);
        fail(QStringLiteral("The backup tool does not ship with this installation of Orvello."));
        return;
    }
    source_ = *shipped;
    const QFileInfo target(target_);
    const QFileInfo folder(target.path());
    if (target.isRelative())
        fail(QStringLiteral("There is no absolute path to install the backup tool at."));
    else if (target.exists() && target.canonicalFilePath() == QFileInfo(source_).canonicalFilePath())
        finish();
    else if (folder.isDir() && folder.isWritable())
        copyAsUser();
    else
        copyAsAdministrator();
}

void PolkitInstaller::copyAsUser() {
    const QFileInfo target(target_);
    asAdministrator_ = false;
    unfinished_ = target.dir().filePath(QLatin1Char('.') + target.fileName() + QStringLiteral(".orvello"));
    start(findCommand("install"),
          {QStringLiteral("-m"), QStringLiteral("0755"), QStringLiteral("-T"), source_, unfinished_});
}

void PolkitInstaller::copyAsAdministrator() {
    asAdministrator_ = true;
    // pkexec's own agent would ask in the terminal that the program was started from, and stop there unseen.
    start(findCommand("pkexec"),
          {QStringLiteral("--disable-internal-agent"), findCommand("install"), QStringLiteral("-m"),
           QStringLiteral("0755"), QStringLiteral("-T"), source_, target_});
}

void PolkitInstaller::start(const QString& command, const QStringList& arguments) {
    if (command.isEmpty() || arguments.contains(QString())) {
        fail(asAdministrator_ && command.isEmpty()
                 ? QStringLiteral("Only the administrator may write to %1, and pkexec, which would ask for "
                                  "authorisation, is missing.")
                       .arg(QFileInfo(target_).path())
                 : QStringLiteral("The command install is missing."));
        return;
    }
    process_ = std::make_unique<QProcess>();
    process_->setProgram(command);
    process_->setArguments(arguments);
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->setStandardOutputFile(QProcess::nullDevice());
    connect(process_.get(), &QProcess::finished, this, &PolkitInstaller::commandEnded);
    connect(process_.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            fail(
                QStringLiteral("%1 cannot be started: %2").arg(process_->program(), process_->errorString()));
    });
    process_->start(QIODevice::ReadOnly);
}

void PolkitInstaller::commandEnded(int exitCode, QProcess::ExitStatus status) {
    if (const auto problem = outcome(exitCode, status))
        fail(*problem);
    else
        finish();
}

std::optional<QString> PolkitInstaller::outcome(int exitCode, QProcess::ExitStatus status) {
    constexpr int dismissed = 126;     // by pkexec(1)
    constexpr int notAuthorised = 127; // also of other errors of pkexec itself
    constexpr int longest = 500;
    auto message = QString::fromLocal8Bit(process_->readAllStandardError()).simplified().left(longest);
    if (!message.isEmpty())
        message.prepend(QStringLiteral(" "));
    if (status != QProcess::NormalExit)
        return QStringLiteral("The installation was ended.") + message;
    if (asAdministrator_ && exitCode == dismissed)
        return QStringLiteral("The authorisation was cancelled.");
    if (asAdministrator_ && exitCode == notAuthorised)
        return QStringLiteral("The installation was not authorised.") + message;
    if (exitCode != 0)
        return QStringLiteral("The backup tool could not be copied to %1.").arg(target_) + message;
    if (unfinished_.isEmpty())
        return std::nullopt;
    const auto from = QFile::encodeName(std::exchange(unfinished_, {}));
    if (std::rename(from.constData(), QFile::encodeName(target_).constData()) == 0)
        return std::nullopt;
    const auto reason = std::generic_category().message(errno);
    std::remove(from.constData());
    return QStringLiteral("The backup tool could not be put at %1. %2")
        .arg(target_, QString::fromStdString(reason));
}

void PolkitInstaller::finish() {
    cleanUp()->downloadDidFinish();
}

void PolkitInstaller::fail(const QString& description) {
    const InstallError error{.description = description.toStdString(),
                             .failingAddress = QUrl::fromLocalFile(source_).toEncoded().toStdString()};
    cleanUp()->downloadDidFail(error);
}

ToolInstallerDelegate* PolkitInstaller::cleanUp() {
    if (!unfinished_.isEmpty())
        QFile::remove(std::exchange(unfinished_, {}));
    if (process_)
        process_.release()->deleteLater(); // it may be the one that has called
    return std::exchange(delegate_, nullptr);
}

QString PolkitInstaller::findCommand(const char* name) const {
    return QStandardPaths::findExecutable(QString::fromLatin1(name), commandFolders_);
}

} // namespace orvello
