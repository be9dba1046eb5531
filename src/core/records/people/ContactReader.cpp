#include "records/people/ContactReader.h"

#include "contacts/VCardReader.h"
#include "foundation/Csv.h"
#include "records/exchange/RecordTable.h"
#include "records/people/ContactTable.h"
#include "records/people/OwnCardLines.h"

namespace {

class CardReader : public ContactReader
{
public:
    explicit CardReader(QIODevice &source)
        : cards(source)
    {}
    std::optional<Entry> next(CardImage image) override
    {
        auto card = cards.next();
        if (!card)
            return std::nullopt;
        const bool isThere = card->state != VCard::State::TooLarge;
        const VCard::State state = card->state;
        const qint64 line = card->line;
        return Entry{isThere ? owncardlines::contactFrom(std::move(*card), image) : CNContact(), state, line};
    }
    qint64 position() const override { return cards.position(); }

private:
    VCardReader cards;
};

class TableReader : public ContactReader
{
public:
    explicit TableReader(QIODevice &source)
        : records(source)
    {}
    std::optional<Entry> next(CardImage) override
    {
        if (!areTitlesRead)
            readTitles();
        const auto record = records.next();
        if (!record || !isNaming)
            return std::nullopt;
        const auto state = !record->isBearable ? VCard::State::TooLarge
                           : !record->isWhole  ? VCard::State::CutOff
                                               : VCard::State::Whole;
        return Entry{ContactTable::contactOf(record->fields, columns), state, record->line};
    }
    qint64 position() const override { return records.position(); }
    bool isUnderstood() const override { return isNaming; }

private:
    void readTitles()
    {
        areTitlesRead = true;
        const auto titles = RecordTable::titlesIn(records);
        if (!titles)
            return;
        columns = ContactTable::columnsOf(titles->fields);
        isNaming = ContactTable::hasNames(columns);
    }

    CsvReader records;
    bool areTitlesRead = false;
    /// A table of which no title means names holds no contacts.
    bool isNaming = true;
    std::vector<ContactTable::Column> columns;
};

} // namespace

std::unique_ptr<ContactReader> ContactReader::of(Form form, QIODevice &source)
{
    if (form == Form::Table)
        return std::make_unique<TableReader>(source);
    return std::make_unique<CardReader>(source);
}
