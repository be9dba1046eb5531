#pragma once

#include "records/MarkedRowsWindow.h"
#include "records/people/GroupMembers.h"

/// The window in which the members of a group of contacts are marked.
class WindowAddContactsGroup : public MarkedRowsWindow
{
    Q_OBJECT
public:
    /// \param group null for a new one.
    WindowAddContactsGroup(std::shared_ptr<EntityContactGroup> group, QWidget *parent);

protected:
    bool save() override { return members.save(); }

private:
    GroupMembers members;
};
