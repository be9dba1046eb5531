#pragma once

#include "foundation/NotificationCenter.h"
#include "store/entities/Entities.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QLabel;

/// A line in the pane about a contact or a company: the notes about them, the newest first, each of which
/// opens. It is not there for who has none.
class NotesStrip : public QWidget
{
    Q_OBJECT
public:
    /// \param shownRecord gives the contact or company of the pane; null for none.
    explicit NotesStrip(std::function<ObjectPtr()> shownRecord, QWidget *parent);

Q_SIGNALS:
    void opened(const ObjectPtr &note);

private:
    void load();

    std::function<ObjectPtr()> record;
    QLabel *label;
    std::vector<std::shared_ptr<EntityNote>> notes;
    QTimer soon;
    std::vector<Observation> observations;
};
