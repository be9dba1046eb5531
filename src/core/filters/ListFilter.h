#pragma once

#include "filters/SavedFilter.h"

#include <QHash>
#include <QStringList>

#include <functional>

/// A row of a filter's popover.
struct FilterRow
{
    int tag;
    /// The criterion that it sets.
    QString key;
    /// The word beside it; empty for none.
    QString label;

    /// By what it is set.
    enum class Editor { PopUp, Segment, Text, Period, Contacts, Companies, ContactCategories };
    Editor editor = Editor::PopUp;
    /// What an empty text field says.
    QString placeholder = {};
};

/// A pop-up menu of a filter, or its segments: the items, and the objects behind those that follow the words.
struct FilterPopUp
{
    QStringList items;
    /// -1 if no item stands for the stored value.
    int selectedIndex = 0;
    std::vector<ObjectPtr> objects;
    /// How many items stand before the objects.
    int wordCount = 1;
};

/// What is marked in a pop-up from which several objects can be picked.
struct FilterSelection
{
    bool selectedAll = true;
    std::vector<ObjectPtr> objects;

    /// "All", "None", or how many are chosen.
    QString title() const;
    static QString popUpTitle(bool selectedAll, int countObjects);
};

/// What the two date pickers of a period show, and what they may be set to.
struct FilterPeriodPickers
{
    Date from;
    Date to;
    Date minimumOfTo;
    Date maximumOfFrom;
};

/// A filter button with its popover, without the widgets: reads the saved entry into the values of controls
/// and writes each change of a control at once. Criteria are found by their key, wherever they stand; what a
/// damaged entry lacks cannot be set, and nothing else in the defaults is touched. Main thread only.
class ListFilter
{
public:
    using ReloadBlock = std::function<void(const FilterEntry &entry)>;

    /// The working copy of the entry.
    const FilterEntry &dictionaryComponent() const { return dictionary; }
    /// Who takes the new entry after each change.
    void setReloadBlock(ReloadBlock block) { reloadBlock = std::move(block); }
    /// The popover is about to open: reads the entry again and forgets what the controls showed.
    void reloadEntry();
    /// Puts the pristine entry in place of the saved one; nobody is told.
    void clear();

    /// The rows whose criterion the entry has.
    std::vector<FilterRow> enabledRows() const;
    /// The criterion of that key, or an empty map.
    QVariantMap criterion(const QString &key) const;
    QVariant value(const QString &key) const { return criterion(key).value(QStringLiteral("Value")); }

    /// A control was set: stores the value, with criterion and entry enabled, and calls the block.
    void changeValueForKey(const QVariant &value, const QString &key);

    /// The pop-up of a criterion, with what the entry holds selected. An empty one for a criterion that is
    /// set otherwise.
    FilterPopUp popUp(const QString &key);
    /// An item of the pop-up, as it was last shown, was chosen.
    void chooseItem(int item, const QString &key);

    /// The objects of a criterion that takes several. Those that are gone are left out.
    FilterSelection selection(const QString &key) const;
    /// Several objects were picked; an empty set asks for what has none.
    void toPopUp(const QString &key, const FilterSelection &selected);

    /// Fills the pickers of the period: the stored dates, else the first run of the program and now.
    const FilterPeriodPickers &setDataPeriod();
    const FilterPeriodPickers &periodPickers() const { return pickers; }
    /// A date was picked. Nothing before the pickers were filled.
    void setDateFrom(Date date);
    void setDateTo(Date date);
    /// Takes the period out of the entry, which stays enabled or not as it is.
    void buttonClearPeriod();

protected:
    ListFilter(SavedFilter place, std::vector<FilterRow> popoverRows);
    ~ListFilter() = default;
    void setPlace(const SavedFilter &place);

private:
    enum class EntryState { AsItIs, Enabled };
    void changeCriterion(const QString &key, const QVariantMap &changes, EntryState state);
    FilterPopUp makePopUp(const QString &key) const;
    FilterPopUp wordsPopUp(const QString &key, const QStringList &words, QString (*wordOf)(int)) const;
    FilterPopUp objectsPopUp(const QString &key, const std::vector<ObjectPtr> &objects,
                             const QStringList &titles, const QStringList &words) const;

    SavedFilter saved;
    std::vector<FilterRow> rows;
    FilterEntry dictionary;
    ReloadBlock reloadBlock;
    QHash<QString, FilterPopUp> shownPopUps;
    FilterPeriodPickers pickers;
    bool allowSetDate = false;
};
