#pragma once

#include "records/MarkedRows.h"
#include "store/entities/Entities.h"

/// Who belongs to a group of contacts: all people by name under their first letters, with a mark at the
/// members. While something is searched for there are no letters. No contact is loaded before the marks take
/// effect. Main thread only.
class GroupMembers
{
public:
    /// Null for a new group.
    explicit GroupMembers(std::shared_ptr<EntityContactGroup> group);

    /// What the user is about to do, in words.
    QString title() const;
    MarkedRows &list() { return people; }
    const MarkedRows &list() const { return people; }

    /// Tells of a new group with the marked members, or puts who was marked into the given one and takes out
    /// who no longer is, in one step that can be taken back. Who was deleted meanwhile is nobody's member;
    /// what was marked for a group that has gone becomes a new one. False if that did not reach the disk,
    /// which the user is told.
    bool save();

private:
    static std::vector<ContactPtr> contactsOf(const std::set<RowId> &wanted);

    std::shared_ptr<EntityContactGroup> contactGroup;
    /// Who was in the group when it was read.
    std::set<RowId> members;
    MarkedRows people{MarkedRows::LettersInSearch::Go};
};
