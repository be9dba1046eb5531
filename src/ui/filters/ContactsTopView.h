#pragma once

#include "filters/FilterContact.h"
#include "foundation/NotificationCenter.h"
#include "objectstore/StoreChanges.h"

#include <QWidget>

class FilterButton;
class StripButton;

/// The strip above the contacts: their filter, out of which a list is made or changed, and the members of a
/// group.
class ContactsTopView : public QWidget
{
    Q_OBJECT
public:
    explicit ContactsTopView(QWidget *parent = nullptr);

    /// Puts something at the leading side.
    void setLeading(QWidget *widget);
    /// The group or list that is shown; null for all people.
    void setContactGroup(const std::shared_ptr<EntityContactGroup> &group);
    /// Opens the bubble of the filter, or closes it.
    void toggleFilter();
    bool canFilter() const;

Q_SIGNALS:
    /// The shown list has other criteria now.
    void listChanged();
    /// The members of the shown group are wanted, or a new group.
    void membersWanted();

private:
    void readGroup();
    void clickButtonSave();

    FilterContact filter;
    std::shared_ptr<EntityContactGroup> contactGroup;
    FilterButton *buttonFilter;
    StripButton *buttonGroup;
    Observation changesHeard;
};
