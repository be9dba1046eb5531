#pragma once

#include "filters/ListFilter.h"
#include "filters/MVContactGroup.h"

/// The filter of the contacts, out of which lists are made.
class FilterContact : public ListFilter
{
public:
    FilterContact();

    /// The segment of activity: 0 all, 1 those with tasks, 2 those without.
    int segmentControllerActivity() const;
    void setSegmentControllerActivity(int index);
    /// The titles of the two pop-ups from which several can be picked.
    QString popUpCompanyTitle() const { return selection(QStringLiteral("Companies")).title(); }
    QString popUpCategoryTitle() const { return selection(QStringLiteral("Categories")).title(); }

    /// The values of a list that keeps what the filter says. Companies and categories are set only where not
    /// all of them are wanted.
    MVContactGroup getContactGroup() const;
    /// Puts what a stored list keeps into the filter, so that the popover shows it.
    void setFilter(const EntityContactGroup &list);
    /// The screen comes up with a group or list, or with null for all people: their filter never survives a
    /// change of screen.
    void viewWillAppear(const EntityContactGroup *group);
};
