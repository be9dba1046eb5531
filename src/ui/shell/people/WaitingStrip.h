#pragma once

#include "foundation/NotificationCenter.h"
#include "store/entities/Entities.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

class QLabel;

/// Opens the draft of a mail that asks a contact about tasks. False where no program takes it, which the user
/// is told.
bool openAskingMail(const ContactPtr &contact, const std::vector<TaskPtr> &tasks);

/// A line in the pane about a contact: what they have been given to do, since when, and when they were asked
/// about it, with a button that asks again. It is not there for who has nothing to do.
class WaitingStrip : public QWidget
{
    Q_OBJECT
public:
    /// \param shownContact gives the contact of the pane; null for none.
    explicit WaitingStrip(std::function<ContactPtr()> shownContact, QWidget *parent);

private:
    void load();

    std::function<ContactPtr()> contact;
    QLabel *label;
    QTimer soon;
    std::vector<Observation> observations;
};
