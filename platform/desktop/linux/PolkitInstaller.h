#pragma once

#include "platform/ToolInstaller.h"

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <string>

namespace orvello {

/// Copies the tool that ships with the program: by itself where the user may write to the folder, else as the
/// administrator, whose authorisation polkit's pkexec asks for.
class PolkitInstaller : public QObject, public ToolInstaller {
  public:
    /// The tool that ships is the first executable file among `shippedTools`. The commands install and pkexec
    /// are looked for in `commandFolders`, or in $PATH when that is empty.
    explicit PolkitInstaller(QStringList shippedTools = placesOfShippedTool(),
                             QStringList commandFolders = {});
    /// Gives up what is under way, without telling the delegate.
    ~PolkitInstaller() override;

    /// A failure's address is that of the file that could not be copied.
    void install(const std::string& path, ToolInstallerDelegate& delegate) override;

    /// Beside the running program and in its folders for executables that are no commands.
    static QStringList placesOfShippedTool();

  private:
    void begin();
    void copyAsUser();
    void copyAsAdministrator();
    void start(const QString& command, const QStringList& arguments);
    void commandEnded(int exitCode, QProcess::ExitStatus status);
    /// What went wrong, or none. Moves the finished copy to where it belongs.
    std::optional<QString> outcome(int exitCode, QProcess::ExitStatus status);
    void finish();
    void fail(const QString& description);
    ToolInstallerDelegate* cleanUp();
    QString findCommand(const char* name) const;

    QStringList shippedTools_;
    QStringList commandFolders_;

    ToolInstallerDelegate* delegate_ = nullptr; ///< of the installation under way
    QString source_;
    QString target_;
    QString unfinished_; ///< the copy that is still to be renamed; empty for none
    bool asAdministrator_ = false;
    std::unique_ptr<QProcess> process_;
};

} // namespace orvello
