#pragma once

#include <QString>

#include <functional>
#include <set>
#include <unordered_set>
#include <vector>

/// A list of things that are marked one by one: their titles in order, under their first letters. A search
/// shows some of them; marks stay whatever is shown.
class MarkedRows
{
public:
    /// What a thing is called here; never 0.
    using Key = qint64;
    struct Entry
    {
        Key key = 0;
        QString title;
        /// Stands beside the title, such as the company of a person.
        QString detail = {};
    };
    /// What is shown: entries, and the letters above them.
    struct Row
    {
        /// 0 for a letter.
        Key key = 0;
        QString text;
        QString detail = {};
        bool isHeading() const { return key == 0; }
    };
    enum class LettersInSearch { Stay, Go };

    explicit MarkedRows(LettersInSearch letters = LettersInSearch::Stay)
        : lettersInSearch(letters)
    {}

    /// Puts others in place of all, and shows them as the search wants. Marks of what is there again stay.
    void setEntries(std::vector<Entry> entries);
    /// Marks exactly these.
    void setMarked(std::set<Key> keys);
    /// These are shown as marked, and no press changes that; they are not among `marked`.
    void setFixed(std::unordered_set<Key> keys) { fixed = std::move(keys); }

    const std::vector<Row> &rows() const { return shown; }
    /// Whether a row of that number is marked or fixed.
    bool isMarked(int row) const;
    bool isFixed(int row) const;
    /// What the user has marked, also where the search hides it.
    const std::set<Key> &marked() const { return marks; }
    std::size_t entryCount() const { return entries.size(); }

    /// Shows what holds the text, case and diacritics ignored; an empty text shows everything.
    void search(const QString &text);
    /// A press on a shown row; a letter and what is fixed are left alone.
    void toggle(int row);
    /// Marks all shown rows that can be marked, or unmarks them.
    void markShown(bool isWanted);
    /// Whether there are shown rows that can be marked, and all of them are.
    bool areAllShownMarked() const;
    /// Whether there is one among them that can be.
    bool canMarkShown() const;

private:
    struct Ordered
    {
        Entry entry;
        QString letter;
        /// Made at the first search.
        QString folded = {};
    };
    void show();

    LettersInSearch lettersInSearch;
    /// In the order of the list.
    std::vector<Ordered> entries;
    std::vector<Row> shown;
    std::set<Key> marks;
    std::unordered_set<Key> fixed;
    QString wanted;
};
