#pragma once

#include "records/TabsViewController.h"

struct ScreenDescription;

/// A screen that has nothing to list: an icon and a sentence about what belongs there.
class RestingScreen : public TabsViewController
{
    Q_OBJECT
public:
    RestingScreen(const QString &title, const ScreenDescription &description, QWidget *parent = nullptr);
};
