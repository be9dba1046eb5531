#include "records/exchange/RecordExport.h"

#include "contacts/VCardWriter.h"
#include "foundation/Localization.h"
#include "records/exchange/CalendarWriter.h"
#include "records/exchange/RecordWriter.h"
#include "records/exchange/TableWriter.h"
#include "records/people/ContactExport.h"
#include "records/people/OwnCardLines.h"
#include "store/entities/MainContext.h"
#include "store/entities/Model.h"

#include <QIODevice>

#include <unordered_set>

using namespace Qt::Literals::StringLiterals;

namespace {

class CardsWriter : public RecordWriter
{
public:
    QByteArray text(const ManagedObject &record) override
    {
        const auto *person = dynamic_cast<const EntityContacts *>(&record);
        return VCardWriter::text(contacts.contactOf(record), VCardWriter::Version::V30,
                                 person ? owncardlines::of(*person) : std::vector<VCardWriter::OwnLine>());
    }

private:
    ContactExport contacts;
};

/// A device that is full takes a part, and says why only when it is given the rest.
OptionalError written(QIODevice &device, const QByteArray &text)
{
    for (qint64 place = 0; place < text.size();) {
        const qint64 taken = device.write(text.constData() + place, text.size() - place);
        if (taken <= 0)
            return Error{u"export"_s, 0, device.errorString()};
        place += taken;
    }
    return std::nullopt;
}

} // namespace

QString exportformat::suffixOf(ExportFormat format)
{
    switch (format) {
    case ExportFormat::VCard:
        return u"vcf"_s;
    case ExportFormat::Csv:
        return u"csv"_s;
    case ExportFormat::ICalendar:
        return u"ics"_s;
    }
    return {};
}

QString exportformat::filterOf(ExportFormat format)
{
    switch (format) {
    case ExportFormat::VCard:
        return localized(u"vCards (*.vcf)"_s);
    case ExportFormat::Csv:
        return localized(u"Table (*.csv)"_s);
    case ExportFormat::ICalendar:
        return localized(u"Calendar (*.ics)"_s);
    }
    return {};
}

std::unique_ptr<RecordWriter> RecordWriter::of(ExportFormat format, const EntityDescription &entity,
                                               std::span<const RowId> rows)
{
    const bool isOfPeople =
        entity.name() == EntityContacts::entityName || entity.name() == EntityCompany::entityName;
    switch (format) {
    case ExportFormat::VCard:
        return isOfPeople ? std::make_unique<CardsWriter>() : nullptr;
    case ExportFormat::Csv:
        return makeTableWriter(entity, rows);
    case ExportFormat::ICalendar:
        return isOfPeople ? nullptr : std::make_unique<CalendarWriter>();
    }
    return nullptr;
}

QString RecordExport::wordsOnWhatIsLeftOut(ExportFormat format, std::string_view entityName,
                                           const std::vector<RowId> &rows)
{
    const bool isOfPeople =
        entityName == EntityContacts::entityName || entityName == EntityCompany::entityName;
    if (format != ExportFormat::Csv || !isOfPeople)
        return {};
    const std::unordered_set<RowId> written(rows.begin(), rows.end());
    int pictures = 0;
    std::unordered_set<QString> people;
    mainContext().visit(FetchRequest(entityName), {"photoName", "id"}, [&](const RowReader &row) {
        if (!written.contains(row.rowId()))
            return;
        pictures += row.text(0).isEmpty() ? 0 : 1;
        people.insert(row.text(1));
    });
    QStringList sentences;
    if (pictures > 0)
        sentences.append(localizedCount(
            u"%1 pictures have no place in a table and were left out. A file of vCards has them."_s,
            pictures));
    QHash<QString, int> notes;
    mainContext().visit(EntityNote::fetchRequest(), {"contact"}, [&](const RowReader &row) {
        if (people.contains(row.text(0)))
            ++notes[row.text(0)];
    });
    const auto several = std::ranges::count_if(notes, [](int count) { return count > 1; });
    if (several > 0)
        sentences.append(localizedCount(
            u"%1 people have several notes, which a table joins to one. A file of vCards keeps them apart."_s,
            several));
    return sentences.join(u'\n');
}

OptionalError RecordExport::write(QIODevice &device, ExportFormat format, std::string_view entityName,
                                  const std::vector<RowId> &rows, const StepBlock &step)
{
    const EntityDescription &entity = organiserModel().requireEntity(entityName);
    const auto writer = RecordWriter::of(format, entity, rows);
    if (!writer)
        return Error{u"export"_s, 0, localized(u"There is no such file of these records."_s)};
    if (auto error = written(device, writer->head()))
        return error;
    const ObjectListBase records(mainContext(), entity, rows);
    for (int place = 0; place < records.size(); ++place) {
        if (const ObjectPtr record = records.objectAt(place))
            if (auto error = written(device, writer->text(*record)))
                return error;
        if (step && !step())
            return std::nullopt;
    }
    return written(device, writer->end());
}
