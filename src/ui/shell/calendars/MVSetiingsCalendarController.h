#pragma once

#include "calendarsync/AccessChoice.h"
#include "foundation/NotificationCenter.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QVBoxLayout;

/// The settings panel: how far and how densely calendars are followed, and how names are shown. A choice is
/// kept at once; the tasks follow when the panel is closed.
class MVSetiingsCalendarController : public QWidget
{
    Q_OBJECT
public:
    explicit MVSetiingsCalendarController(QWidget *parent = nullptr);

    void showWindow();

Q_SIGNALS:
    /// The program may use the calendars from now on.
    void calendarsAllowed();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct Choice
    {
        QString heading;
        QStringList objectNames;
        QStringList titles;
    };

    QVBoxLayout *addCard(const QString &title, const QString &description);
    QButtonGroup *addChoice(QVBoxLayout &card, const Choice &choice);
    QLabel *addDescription(QVBoxLayout &card, const QString &text);
    void setUpLook();
    void setUpAccess();
    void addSwitch(QVBoxLayout &card, accesschoice::Kind kind, const QString &objectName,
                   const QString &title);
    void setUpSync();
    void setUpContacts();
    void setUpDevices();
    void refresh();
    void actionRadioButtonSyncPeriod(int choice);
    void actionRadioButtonSyncFrequency(int choice);
    void actionRadioButtonDisplayOrder(int choice);

    QVBoxLayout *column;
    std::vector<std::pair<accesschoice::Kind, QCheckBox *>> switches;
    QButtonGroup *scheme = nullptr;
    QButtonGroup *contrast = nullptr;
    QButtonGroup *density = nullptr;
    QButtonGroup *period = nullptr;
    QButtonGroup *frequency = nullptr;
    QButtonGroup *order = nullptr;
    QLabel *periodDescription = nullptr;
    QLabel *frequencyDescription = nullptr;
    std::optional<Observation> preferences;
};
