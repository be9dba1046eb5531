#pragma once

#include "objectstore/ManagedObject.h"
#include "records/SearchHits.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class BackgroundSearch;

/// What a search through all records found: a list of headings and the records under them, ready to be shown.
class SearchViewController
{
public:
    using Row = SearchRow;

    SearchViewController();
    ~SearchViewController();

    /// Searches anew. A record that is found through several texts stands once; groups stand in the order
    /// task, project, contact, company, note, and only those with members. Nothing is found by no text.
    void changeFileterString(const QString &text);
    /// The same for the last save of the store, without keeping the caller waiting: until `done` is called
    /// from the main loop the former rows stand. Only the last of several calls is answered.
    void changeFileterStringLater(const QString &text, std::function<void()> done);
    /// Whether an answer is still to come.
    bool isSearching() const { return searching; }

    const std::vector<Row> &rows() const { return *resultRows; }
    /// The row that is meant by default: the first whose name has the text, else the first that only mentions
    /// it; -1 without any.
    int firstChoice() const;
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
    SearchRows resultRows = std::make_shared<const std::vector<Row>>();
    std::unique_ptr<BackgroundSearch> background;
    bool searching = false;
};
