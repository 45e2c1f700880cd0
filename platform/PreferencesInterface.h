#pragma once

#include "platform/Controls.h"

namespace orvello {

/// The controls of the preferences window, by the names of their outlets. The main interface owns them; the
/// window shows them from when it is first needed, so that they cost nothing before.
struct PreferencesInterface {
    // The schedule pane
    PopUpButton SettingsBackupTimeInterval;
    PopUpButton SettingsAndOr;
    PopUpButton SettingsIdleTime;
    PopUpButton SettingsTime1;
    PopUpButton SettingsTime2;
    TextField SettingsNextBackup; ///< what the scheduler expects, as in the menu
    TextField SettingsLastBackup;
    CheckBox SettingsAutostart;
    Button SettingsBackupNow;
    Button SettingsAppDefaults;

    // The information pane
    Box InfoDestinationBox;
    ImageView InfoVolumeImage;
    TextField InfoVolumeName;
    TextField InfoVolumeType;
    TextField InfoVolumeID;
    TextField InfoVolumeURL;
    Box InfoLastBox;
    TextField InfoLastFiles;
    TextField InfoLastBytes;
    TextField InfoTotalFiles;
    TextField InfoTotalBytes;

    // The about pane
    ImageView AboutImage;
    Button AboutVisitWebpage;
    Button AboutShowDocumentation;
    Button AboutInstallHelperScript;
};

} // namespace orvello
