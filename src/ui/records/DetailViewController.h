#pragma once

#include "objectstore/ManagedObject.h"
#include "records/LeaveGate.h"
#include "records/NewTaskRequest.h"

#include <QWidget>

#include <memory>

class QPrinter;

/// Where the detail of a record lies in the content area.
struct DetailPlace
{
    /// The part of the content's width that it covers.
    double width = 0.595;
    /// How far it stays below the upper edge of the content.
    int topInset = 40;
};

/// A pane about one record that slides in over a screen.
class DetailViewController : public QWidget, public EditedPlace
{
    Q_OBJECT
public:
    explicit DetailViewController(QWidget *parent = nullptr);

    /// Whether the pane is about that record.
    virtual bool shows(const std::shared_ptr<ManagedObject> &record) const = 0;
    /// That record, or null.
    virtual std::shared_ptr<ManagedObject> record() const { return nullptr; }
    /// Writes what the pane says of the record on pages of a printer. False if it has nothing to write.
    virtual bool print(QPrinter &printer)
    {
        Q_UNUSED(printer)
        return false;
    }
    /// Whether "KeySave" has something to do: the pane is being edited.
    virtual bool canSave() const { return false; }
    /// Whether the pane stays when its record leaves the list, since the user has sent it away from here.
    virtual bool staysWithoutRow() const { return false; }
    /// The pane is about to be left for good.
    virtual void clearController() {}

    /// The pane on top is active; those that it covers are not.
    void setActive(bool isNowActive);
    bool isActive() const { return active; }
    /// It lies beside the list of its screen, from which it comes and goes, and has no way back of its own.
    virtual void setEmbedded() { embedded = true; }
    bool isEmbedded() const { return embedded; }

Q_SIGNALS:
    /// The user wants back to what lies below.
    void backRequested();
    /// The record is no more: the pane is to go at once.
    void recordRemoved();
    /// The record can take no more what was typed for it, which lies in this file now.
    void textLeft(const QString &draftFile);
    /// The user wants to see another record from here, in a pane over this one.
    void recordWanted(const ObjectPtr &record);
    /// The user wants to write a task down from here.
    void newTaskWanted(const NewTaskRequest &request);
    /// What the commands can do may have changed.
    void commandsChanged();
    /// The pane has gone.
    void dismissDeteilViewController();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool active = false;
    bool embedded = false;
};
