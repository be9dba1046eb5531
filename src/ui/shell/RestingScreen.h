#pragma once

#include "shell/SidebarModel.h"
#include "shell/TabsViewController.h"

/// A screen that has nothing to list: an icon and a sentence about what belongs there.
class RestingScreen : public TabsViewController
{
    Q_OBJECT
public:
    RestingScreen(const QString &title, SidebarItem item, QWidget *parent = nullptr);
};
