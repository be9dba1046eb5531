#include "records/people/ImportableContacts.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Localization.h"
#include "objectstore/Sqlite.h"
#include "store/entities/FullName.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"

#include <QIODevice>

#include <algorithm>
#include <map>
#include <numeric>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A card that names no person stands for its organization.
QString titleOf(const CNContact &contact)
{
    return contact.hasName() ? fullNameWith(contact.givenName, contact.familyName) : contact.organizationName;
}

/// A card of which nothing but the title or the name would come in.
bool saysNoMore(const CNContact &card)
{
    const bool hasMoreAsPerson = card.birthday || !card.unreadBirthday.isEmpty() ||
                                 !card.jobTitle.isEmpty() || !card.organizationName.isEmpty() ||
                                 !card.groups.isEmpty();
    return card.phoneNumbers.empty() && card.emailAddresses.empty() && card.urlAddresses.empty() &&
           card.postalAddresses.empty() && card.note.isEmpty() && card.otherWords.empty() &&
           !(card.hasName() && hasMoreAsPerson);
}

QString withoutEnd(QString sentence)
{
    while (sentence.endsWith(u'.'))
        sentence.chop(1);
    return sentence;
}

} // namespace

ImportableContacts::ImportableContacts() = default;

ImportableContacts::~ImportableContacts() = default;

void ImportableContacts::add(ContactCards cards)
{
    origins.push_back(std::move(cards));
}

void ImportableContacts::clear()
{
    reader.reset();
    device.reset();
    origins.clear();
    nextOrigin = 0;
    candidates.clear();
    entries.clear();
    known.clear();
    sentences.clear();
    rows.setMarked({});
    showRows();
}

std::vector<ImportableContacts::Mark> ImportableContacts::marksOfAll() const
{
    std::map<std::pair<QString, QString>, int> met;
    std::vector<Mark> all;
    for (std::size_t place = 0; place < entries.size(); ++place) {
        const QString &origin = origins[candidates[place].origin].name();
        const QString &title = entries[place].title;
        all.emplace_back(origin, title, met[{origin, title}]++);
    }
    return all;
}

ImportableContacts::Marks ImportableContacts::marks() const
{
    const std::vector<Mark> all = marksOfAll();
    Marks marked;
    for (const MarkedRows::Key key : rows.marked())
        marked.insert(all[static_cast<std::size_t>(key - 1)]);
    return marked;
}

void ImportableContacts::mark(const Marks &wanted)
{
    const std::vector<Mark> all = marksOfAll();
    std::set<MarkedRows::Key> keys = rows.marked();
    for (std::size_t place = 0; place < all.size(); ++place) {
        const MarkedRows::Key key = entries[place].key;
        if (wanted.contains(all[place]) && !known.contains(key))
            keys.insert(key);
    }
    rows.setMarked(std::move(keys));
}

void ImportableContacts::showRows()
{
    rows.setFixed(known);
    rows.setEntries(entries);
}

bool ImportableContacts::openNext()
{
    const ContactCards &cards = origins[nextOrigin++];
    ContactCards::Opened opened = cards.open();
    cardsOfOrigin = 0;
    if (!opened.device) {
        sentences.append(
            localized(u"\"%1\" cannot be read: %2."_s).arg(cards.name(), withoutEnd(opened.reason)));
        return false;
    }
    device = std::move(opened.device);
    reader = ContactReader::of(cards.form(), *device);
    return true;
}

void ImportableContacts::take(const ContactReader::Entry &card)
{
    const QString &origin = origins[nextOrigin - 1].name();
    const Candidate candidate{nextOrigin - 1, cardsOfOrigin++};
    if (card.state == VCard::State::TooLarge) {
        sentences.append(
            localized(u"The card in line %1 of \"%2\" is too large."_s).arg(card.line).arg(origin));
        return;
    }
    const CNContact &contact = card.contact;
    const QString title = titleOf(contact);
    if (card.state == VCard::State::CutOff)
        sentences.append(
            localized(u"The card in line %1 of \"%2\" is cut off; what there is of it is shown."_s)
                .arg(card.line)
                .arg(origin));
    if (title.isEmpty()) {
        const QString sentence =
            contact.isOfNobody
                ? u"The card in line %1 of \"%2\" is that of a group, a place or a device, and is left out."_s
                : u"The card in line %1 of \"%2\" has no name."_s;
        sentences.append(localized(sentence).arg(card.line).arg(origin));
        return;
    }
    candidates.push_back(candidate);
    const auto key = static_cast<MarkedRows::Key>(candidates.size());
    const bool isKnown = contact.hasName() ? presentNames.hasContact(title) : presentNames.hasCompany(title);
    const auto isBare = [&] {
        return contact.hasName() ? presentNames.bareContact(title) != nullptr
                                 : presentNames.isBareCompany(title);
    };
    const bool isPresent = isKnown && (saysNoMore(contact) || !isBare());
    const QString detail = contact.hasName() ? contact.organizationName : localized(u"Company"_s);
    entries.push_back({key, title, isPresent ? localized(u"Already there"_s) : detail});
    if (isPresent)
        known.insert(key);
}

bool ImportableContacts::readSome(int milliseconds)
{
    if (!isReading())
        return false;
    QElapsedTimer timer;
    timer.start();
    do {
        if (!reader && !openNext())
            continue;
        if (const auto card = reader->next(CardImage::Leave)) {
            take(*card);
        } else {
            const QString &name = origins[nextOrigin - 1].name();
            if (!reader->isUnderstood())
                sentences.append(
                    localized(
                        u"No title of names is understood in the first line of \"%1\", so that nothing can be read from it."_s)
                        .arg(name));
            else if (cardsOfOrigin == 0)
                sentences.append(localized(u"There is no contact in \"%1\"."_s).arg(name));
            reader.reset();
            device.reset();
        }
    } while (isReading() && !timer.hasExpired(milliseconds));
    if (isReading())
        return true;
    showRows();
    return false;
}

int ImportableContacts::percentRead() const
{
    qint64 all = 0;
    qint64 done = reader ? reader->position() : 0;
    for (std::size_t origin = 0; origin < origins.size(); ++origin) {
        const qint64 size = origins[origin].size();
        all += size;
        done += origin + (reader ? 1 : 0) < nextOrigin ? size : 0;
    }
    return all > 0 ? static_cast<int>(std::min<qint64>(100, 100 * done / all)) : 100;
}

void ImportableContacts::importFrom(std::size_t origin, ContactImport &import, SearchIndex::Ahead &index,
                                    const StepBlock &step)
{
    struct Wanted
    {
        int card;
        MarkedRows::Key key;
        bool isMarked;
    };
    std::vector<Wanted> wanted;
    const auto want = [&](const auto &keys, bool areMarked) {
        for (const MarkedRows::Key key : keys) {
            const Candidate &one = candidates[static_cast<std::size_t>(key - 1)];
            if (one.origin == origin)
                wanted.push_back({one.card, key, areMarked});
        }
    };
    want(rows.marked(), true);
    if (wanted.empty())
        return;
    // The account says of those that are there what they lack.
    want(known, false);
    std::ranges::sort(wanted, {}, &Wanted::card);
    const ContactCards::Opened opened = origins[origin].open();
    if (!opened.device) {
        import.refuse(localized(u"\"%1\" cannot be read: %2."_s)
                          .arg(origins[origin].name(), withoutEnd(opened.reason)));
        return;
    }
    const auto cards = ContactReader::of(origins[origin].form(), *opened.device);
    int number = 0;
    auto next = wanted.begin();
    for (; next != wanted.end(); ++number) {
        const bool isWanted = number == next->card;
        const auto card = cards->next(isWanted ? CardImage::Read : CardImage::Leave);
        if (!card)
            break;
        if (!isWanted)
            continue;
        const Wanted one = *next++;
        const CNContact &contact = card->contact;
        if (titleOf(contact) != entries[static_cast<std::size_t>(one.key - 1)].title) {
            import.refuse(localized(u"\"%1\" has changed since it was read."_s).arg(origins[origin].name()));
            return;
        }
        if (!one.isMarked) {
            import.meet(contact);
            continue;
        }
        if (!contact.hasName())
            import.importCompany(contact);
        else if (const ContactPtr row = import.importContactToDataBase(contact))
            index.add(row);
        if (!step())
            return;
    }
    // The file is another one by now.
    if (next != wanted.end())
        import.refuse(localized(u"\"%1\" has fewer contacts than before."_s).arg(origins[origin].name()));
}

ContactImportAccount ImportableContacts::import(const ContactImport::PngMaker &toPng, const StepBlock &step)
{
    // To write so many is hardly felt.
    constexpr int contactsOfPart = 500;
    const sqlite::RoomyCache cache(mainContext().connection());
    RecordsTransaction transaction(u"Import Contacts"_s, ChangeAuthor::Import);
    ContactImport contacts(toPng);
    contacts.setJoinedGroup(joinedGroup);
    SearchIndex::Ahead index;
    bool isSaved = true;
    const auto write = [&] {
        isSaved = DBWorker::tellOfFailure(transaction.commitPart());
        if (isSaved)
            index.committed();
        return isSaved;
    };
    bool isStopped = false;
    int waiting = 0;
    const auto stepAndWrite = [&] {
        if (++waiting == contactsOfPart) {
            waiting = 0;
            if (!write())
                return false;
        }
        isStopped = step && !step();
        return !isStopped;
    };
    for (std::size_t origin = 0; origin < origins.size() && isSaved && !isStopped; ++origin)
        importFrom(origin, contacts, index, stepAndWrite);
    if (isSaved)
        write();
    ContactImportAccount account = contacts.finish();
    account.wasStopped = isStopped;
    account.isSaved = isSaved;
    return account;
}
