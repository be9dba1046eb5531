#pragma once

#include "records/PlainRecordScreen.h"

class ContactsTopView;

/// The screen of people: all of them, who meets the criteria of a list, or the members of a group.
class ContactViewController : public PlainRecordScreen
{
    Q_OBJECT
public:
    /// \param group null for all people.
    ContactViewController(const RecordKind &people, std::shared_ptr<EntityContactGroup> group,
                          QWidget *parent = nullptr);

    const std::shared_ptr<EntityContactGroup> &contactGroup() const { return group; }
    /// The private group that is shown, to which those belong who are made or imported meanwhile; null where
    /// all people or a list is shown.
    std::shared_ptr<EntityContactGroup> joinedGroup() const;
    /// Shows another group or list.
    void setContactGroup(const std::shared_ptr<EntityContactGroup> &newGroup);

    void openFilter() override;
    void prepareNew(FormModel &form) override;
    bool canFilter() const override;

protected:
    void addFirst() override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void pickMembers();
    RecordKind ofGroup(RecordKind people) const;
    std::vector<ListedRecord> rows(const FilterEntry *filter) const;
    bool isRegroupedBy(const StoreChanges &changes) const;

    std::shared_ptr<EntityContactGroup> group;
    ContactsTopView *topView;
};
