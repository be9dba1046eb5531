#pragma once

#include "foundation/NotificationCenter.h"
#include "records/people/Birthdays.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QLabel;

/// A line above the people that tells the birthdays of the next four weeks, as many as there is room for.
/// Each leads to who has it.
class BirthdaysStrip : public QWidget
{
    Q_OBJECT
public:
    explicit BirthdaysStrip(QWidget *parent = nullptr);

Q_SIGNALS:
    void pressed(const ObjectPtr &contact);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void load();
    void showBirthdays();

    QLabel *label;
    std::vector<Birthdays::Birthday> birthdays;
    QTimer soon;
    QTimer midnight;
    std::vector<Observation> observations;
};
