#pragma once

#include "foundation/NotificationCenter.h"

#include <QWidget>

#include <functional>
#include <optional>

class QButtonGroup;
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
    void setUpSync();
    void setUpContacts();
    void refresh();
    void actionRadioButtonSyncPeriod(int choice);
    void actionRadioButtonSyncFrequency(int choice);
    void actionRadioButtonDisplayOrder(int choice);

    QVBoxLayout *column;
    QButtonGroup *period = nullptr;
    QButtonGroup *frequency = nullptr;
    QButtonGroup *order = nullptr;
    QLabel *periodDescription = nullptr;
    QLabel *frequencyDescription = nullptr;
    std::optional<Observation> preferences;
};
