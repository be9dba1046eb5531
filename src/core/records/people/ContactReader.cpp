#include "records/people/ContactReader.h"

#include "contacts/VCardReader.h"
#include "foundation/Csv.h"
#include "records/people/ContactTable.h"

namespace {

class CardReader : public ContactReader
{
public:
    explicit CardReader(QIODevice &source)
        : cards(source)
    {}
    std::optional<Entry> next(CardImage image) override
    {
        const auto card = cards.next();
        if (!card)
            return std::nullopt;
        const bool isThere = card->state != VCard::State::TooLarge;
        return Entry{isThere ? contactFrom(*card, image) : CNContact(), card->state, card->line};
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
        if (!record || !hasColumns)
            return std::nullopt;
        const auto state = !record->isBearable ? VCard::State::TooLarge
                           : !record->isWhole  ? VCard::State::CutOff
                                               : VCard::State::Whole;
        return Entry{ContactTable::contactOf(record->fields, columns), state, record->line};
    }
    qint64 position() const override { return records.position(); }

private:
    void readTitles()
    {
        areTitlesRead = true;
        const auto titles = records.next();
        if (!titles)
            return;
        for (const QString &title : titles->fields) {
            columns.push_back(ContactTable::Column::of(title));
            hasColumns = hasColumns || columns.back();
        }
    }

    CsvReader records;
    bool areTitlesRead = false;
    /// A table without a title that is known holds no contacts.
    bool hasColumns = false;
    std::vector<std::optional<ContactTable::Column>> columns;
};

} // namespace

std::unique_ptr<ContactReader> ContactReader::of(Form form, QIODevice &source)
{
    if (form == Form::Table)
        return std::make_unique<TableReader>(source);
    return std::make_unique<CardReader>(source);
}
