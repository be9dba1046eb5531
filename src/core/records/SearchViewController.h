#pragma once

#include "objectstore/ManagedObject.h"

#include <QString>

#include <vector>

/// What a search through all records found: a list of headings and the records under them, ready to be shown.
class SearchViewController
{
public:
    /// A heading (a localised word in capitals), or a record.
    struct Row
    {
        QString heading;
        ObjectPtr record;
        bool isHeading() const { return !record; }
    };

    /// Searches anew. A record that is found through several texts stands once; groups stand in the order
    /// task, project, contact, company, note, and only those with members.
    void changeFileterString(const QString &text);
    const std::vector<Row> &rows() const { return resultRows; }
    /// The height that the list takes, within the limits of the popover.
    double popoverHeight(double rowHeight, double headerHeight) const;
    /// Takes a record to the screen that shows it; false for a heading or a row that is none.
    bool doubleClick(int row) const;

    /// The name of a record as the list shows and sorts it; empty for a kind that is not searched.
    static QString getStringWithObject(const ObjectPtr &object);
    /// 0 task, 1 project, 2 contact, 3 company, 4 note, 5 anything else.
    static int getEntityIndex(const ObjectPtr &object);
    /// By name, whatever the case.
    static std::vector<ObjectPtr> sortetArray(std::vector<ObjectPtr> objects);

private:
    std::vector<Row> resultRows;
};
