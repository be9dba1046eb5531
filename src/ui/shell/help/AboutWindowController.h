#pragma once

#include <QWidget>

/// What the program is: its name, version and maker, where it is at home and who helps. There is one such
/// window.
class AboutWindowController : public QWidget
{
    Q_OBJECT
public:
    /// The window, made if it is not there.
    static AboutWindowController *defaultController();
    /// The one that is open, or null.
    static AboutWindowController *shared();

    void showWindow();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    AboutWindowController();
};
