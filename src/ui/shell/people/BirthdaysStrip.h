#pragma once

#include "foundation/NotificationCenter.h"
#include "objectstore/Value.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QLabel;

/// A line above the people that tells the birthdays of the next four weeks. Each leads to who has it. Without
/// any it is not there.
class BirthdaysStrip : public QWidget
{
    Q_OBJECT
public:
    explicit BirthdaysStrip(QWidget *parent = nullptr);

Q_SIGNALS:
    void pressed(const ObjectPtr &contact);

private:
    void load();

    QLabel *label;
    std::vector<RowId> contacts;
    QTimer soon;
    QTimer midnight;
    std::vector<Observation> observations;
};
