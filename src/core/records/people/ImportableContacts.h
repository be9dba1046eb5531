#pragma once

#include "records/MarkedRows.h"
#include "records/SearchIndex.h"
#include "records/people/ContactCards.h"
#include "records/people/ContactImport.h"
#include "store/state/StepBlock.h"

#include <QElapsedTimer>
#include <QSet>
#include <QStringList>

#include <deque>
#include <set>
#include <tuple>
#include <vector>

/// The contacts of files and address books, of which the user marks those that are to be imported. Their
/// cards are read bit by bit, so that a window stays awake, and read again for the import: pictures are held
/// only while they are written. Main thread only.
class ImportableContacts
{
public:
    ImportableContacts();
    ~ImportableContacts();
    Q_DISABLE_COPY_MOVE(ImportableContacts)

    /// Adds the contacts of an origin behind those that are there; they come with `readSome`.
    void add(ContactCards cards);
    /// Takes everything away.
    void clear();
    /// Reads on for a while. False when nothing is left to read; the list then has everything.
    bool readSome(int milliseconds);
    bool isReading() const { return reader != nullptr || nextOrigin < origins.size(); }
    /// How much of what was added has been read, of 100.
    int percentRead() const;

    /// The contacts by their full names, those of organizations by the names of these. Those whose name is in
    /// the store are marked, and stay so.
    MarkedRows &list() { return rows; }
    const MarkedRows &list() const { return rows; }
    /// A card by its origin, its title, and how many of that title come before it there, by which it is found
    /// again when the origins are read another time.
    using Mark = std::tuple<QString, QString, int>;
    using Marks = std::set<Mark>;
    Marks marks() const;
    /// Marks these as well, where they are there.
    void mark(const Marks &wanted);
    /// What could not be read, a sentence each.
    const QStringList &problems() const { return sentences; }

    /// Those who are imported join a private group; none for null.
    void setJoinedGroup(std::shared_ptr<EntityContactGroup> group) { joinedGroup = std::move(group); }
    /// Imports the marked contacts in one step that can be taken back. Some hundred at a time are written; if
    /// that fails, those before stay. \param step called after each of them.
    ContactImportAccount import(const ContactImport::PngMaker &toPng, const StepBlock &step = {});

private:
    struct Candidate
    {
        std::size_t origin;
        /// Which card of its origin it is.
        int card;
    };
    bool openNext();
    void take(const ContactReader::Entry &card);
    void showRows();
    std::vector<Mark> marksOfAll() const;
    void importFrom(std::size_t origin, ContactImport &import, SearchIndex::Ahead &index,
                    const StepBlock &step);

    MarkedRows rows{MarkedRows::LettersInSearch::Go};
    std::vector<ContactCards> origins;
    std::size_t nextOrigin = 0;
    std::unique_ptr<QIODevice> device;
    std::unique_ptr<ContactReader> reader;
    int cardsOfOrigin = 0;
    /// A contact has its place in here plus one for a key.
    std::vector<Candidate> candidates;
    std::vector<MarkedRows::Entry> entries;
    PresentNames presentNames;
    std::unordered_set<MarkedRows::Key> known;
    QStringList sentences;
    std::shared_ptr<EntityContactGroup> joinedGroup;
};
