#pragma once

#include "store/AppDelegate.h"

#include <memory>

class MainWindowController;

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

    MainWindowController *mainWindow() const { return controller.get(); }

private:
    std::unique_ptr<MainWindowController> controller;
    QString badgeLabel;
};
