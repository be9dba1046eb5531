#pragma once

#include "cloud/DeviceHealth.h"
#include "foundation/NotificationCenter.h"
#include "shell/devices/PassphraseDialog.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QVBoxLayout;
class FormScroll;

/// The user's devices: which take part, when each was last heard of, what waits and what could not be read;
/// and the folder that they share, with its seal.
class DevicesWindow : public QWidget
{
    Q_OBJECT
public:
    explicit DevicesWindow(QWidget *parent = nullptr);

    /// Shows the one window, making it if there is none.
    static void open(QWidget *parent);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void refresh();
    void fitIntoScreen();
    /// Shows lines in the rows of a list, which stay where they can.
    void setLines(QWidget &list, const std::vector<DeviceHealth::Line> &lines);
    void chooseFolder();
    void leaveFolder();
    void askForPassphrase(PassphraseDialog::Purpose purpose);
    void endSealing();
    void removeDevice(const DeviceHealth::Line &line);

    /// The size that it gave itself.
    QSize fitted;
    FormScroll *scroll;
    QLabel *folder;
    QLabel *hint;
    QPushButton *leave;
    QWidget *sealingCard;
    QLabel *sealing;
    QPushButton *seal;
    QPushButton *enter;
    QPushButton *change;
    QPushButton *end;
    QLabel *summary;
    QWidget *devices;
    QWidget *problems;
    QWidget *problemCard;
    Observation observation;
};
