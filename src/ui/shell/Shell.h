#pragma once

#include "store/AppDelegate.h"

#include <memory>

class LookOfProgram;
class MainWindowController;
class StartWindow;
class WindowCommands;

/// The screens, as the root of the program asks for them.
class Shell : public ShellPort
{
public:
    Shell();
    ~Shell() override;

    /// Style, fonts, names and icon of the program; once, before the first window.
    static void prepareApplication();

    void showMainWindow() override;
    void showStartWindow() override;
    bool hasMainWindow() const override { return controller != nullptr; }
    bool commitEditing() override;
    void setBadgeLabel(const QString &label) override;
    bool mayLeaveStore() override;
    void leaveStore() override;
    void changeDataBase() override;
    void closeStartWindow() override;
    void openHelp() override;
    bool openFiles(const QStringList &paths) override;
    QString helpPage() const;

    MainWindowController *mainWindow() const { return controller.get(); }
    StartWindow *startWindow() const { return start.get(); }

private:
    void bindCommands();
    void quit();

    std::unique_ptr<MainWindowController> controller;
    std::unique_ptr<StartWindow> start;
    std::unique_ptr<WindowCommands> commands;
    std::unique_ptr<LookOfProgram> look;
    QString badgeLabel;
};
