#pragma once

namespace orvello {

class AlertPresenter;
class Application;
class Bundle;
class Calendar;
class Clock;
class FileManager;
class FormatterFactory;
class IORegistry;
class Log;
class LoginItem;
class RunLoop;
class StatusBar;
class ToolInstaller;
class UserDefaults;
class UserTaskRunner;
class Window;
class Workspace;

/// Everything that the program's logic expects of a desktop. A back end owns the parts and outlives their
/// users.
struct Platform {
    AlertPresenter& alerts;
    Application& application;
    Bundle& bundle;
    Calendar& calendar;
    Clock& clock;
    FileManager& fileManager;
    FormatterFactory& formatters;
    IORegistry& ioRegistry;
    Log& log;
    LoginItem& loginItem;
    RunLoop& runLoop;
    StatusBar& statusBar;
    ToolInstaller& toolInstaller;
    UserDefaults& userDefaults;
    UserTaskRunner& userTasks;
    Window& preferencesWindow;
    Workspace& workspace;
};

} // namespace orvello
