#pragma once

#include "foundation/NotificationCenter.h"
#include "store/entities/Entities.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QLabel;

/// A line in the pane about a contact: the notes about them, the newest first, each of which opens. It is not
/// there for who has none.
class NotesStrip : public QWidget
{
    Q_OBJECT
public:
    /// \param shownContact gives the contact of the pane; null for none.
    explicit NotesStrip(std::function<ContactPtr()> shownContact, QWidget *parent);

Q_SIGNALS:
    void opened(const ObjectPtr &note);

private:
    void load();

    std::function<ContactPtr()> contact;
    QLabel *label;
    std::vector<std::shared_ptr<EntityNote>> notes;
    QTimer soon;
    std::vector<Observation> observations;
};
