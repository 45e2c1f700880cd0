#include "app/ZRAppDelegate.h"
#include "platform/Alert.h"
#include "platform/Application.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/ToolInstaller.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "settings/SettingsKeys.h"

namespace orvello {

void ZRAppDelegate::setUpMissingTool() {
    if (!platform_.userDefaults.boolForKey(key::ScriptRemind)) {
        platform_.log.line("Finalize called");
        initFinalize();
        return;
    }
    platform_.log.line("Script Remind is ON");
    platform_.log.line("No Script found at: " + toolPath);
    const auto answer = platform_.alerts.runModal({.message = "Welcome to Orvello!",
                                                   .defaultButton = "Install the Script",
                                                   .alternateButton = "Skip Installation",
                                                   .otherButton = "Do not remind me again!",
                                                   .icon = AlertIcon::Application,
                                                   .accessoryView = "AskScript"});
    if (answer == AlertResponse::Default) {
        showInstructions();
        return;
    }
    if (answer == AlertResponse::Other)
        platform_.userDefaults.setObject(key::ScriptRemind, false);
    initFinalize();
}

void ZRAppDelegate::showInstructions() {
    const auto answer = platform_.alerts.runModal(
        {.message = "Helper Script Installation Instructions",
         .icon = AlertIcon::Application,
         .accessoryView = "Instructions",
         .accessoryAction = [this] { platform_.toolInstaller.install(toolPath, *this); }});
    if (answer != AlertResponse::Default)
        return;
    platform_.workspace.openWebPage("/Orvello/en/instructions");
    platform_.application.terminate();
}

void ZRAppDelegate::downloadDidFinish() {
    platform_.log.line("downloadDidFinish");
    if (!platform_.fileManager.fileExistsAtPath(toolPath)) {
        installationFailed();
        return;
    }
    platform_.log.line("Script successfully installed");
    constexpr unsigned permissions = 0755;
    platform_.fileManager.setPosixPermissions(toolPath, permissions);
    platform_.alerts.runModal(
        {.message = "Setup Successful!",
         .informativeText = "Orvello will now quit. Just start it again and everything will be set up.",
         .icon = AlertIcon::Application});
    FoundScript = true;
    initFinalize();
    platform_.application.terminate();
}

void ZRAppDelegate::downloadDidFail(const InstallError& error) {
    platform_.log.line("Download failed! Error - " + error.description + " " + error.failingAddress);
    installationFailed();
}

void ZRAppDelegate::installationFailed() {
    platform_.log.line("Error installing script");
    platform_.alerts.runModal(
        {.message = "Setup not Successful!",
         .informativeText =
             "Please restart your Mac and try again.\n\nIf this Error keeps reoccuring please do not "
             "hesitate to contact the Developer at " ORVELLO_SUPPORT_ADDRESS,
         .icon = AlertIcon::Application});
    platform_.application.terminate();
}

void ZRAppDelegate::AboutInstallHelperScriptClicked() {
    platform_.userDefaults.setObject(key::ScriptRemind, true);
    platform_.alerts.runModal(
        {.message = "Install the Helper Script",
         .informativeText =
             "In order to install the Script Orvello must be restarted.\n\nTherefore after clicking the "
             "OK Button Orvello will quit.\n\nPlease start it again manually after that and follow the "
             "Instructions.\n"});
    platform_.application.terminate();
}

void ZRAppDelegate::AboutVisitWebpageClicked() {
    platform_.workspace.openWebPage("/Orvello/en/");
}

void ZRAppDelegate::AboutShowDocumentationClicked() {
    platform_.workspace.openWebPage("/Orvello/en/doc/");
}

} // namespace orvello
