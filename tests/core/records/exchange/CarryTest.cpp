// All that somebody has, written to files and read into an empty store, in whatever order these come.

#include "ExchangeTest.h"
#include "cloud/IcloudManager.h"
#include "records/exchange/TableWriter.h"
#include "records/exchange/TaskImport.h"
#include "records/people/ContactExport.h"
#include "records/people/ImportableContacts.h"
#include "store/entities/EntityContactGroup.h"
#include "store/entities/EntityProject.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <random>

namespace {

const QByteArray face = "\x89PNG\r\n\x1a\nface";

struct LifeFile
{
    QString name;
    QByteArray text;
    bool isOfPeople;
};

/// The lines of what is told of a record.
class Lines
{
public:
    Lines &add(const QString &text)
    {
        all << text;
        return *this;
    }
    template <typename List>
    Lines &titles(const List &records)
    {
        QStringList found;
        for (const auto &record : records)
            found << record->title();
        found.sort();
        return add(found.join(u", "_qs));
    }
    template <typename List>
    Lines &values(const List &list)
    {
        QStringList found;
        for (const auto &[label, value] : list)
            found << label + u':' + value;
        found.sort();
        return add(found.join(u", "_qs));
    }
    QString text() const { return all.join(u'|'); }

private:
    QStringList all;
};

class CarryTest : public ExchangeTest
{
protected:
    CarryTest()
    {
        PlatformConfiguration::setAuthorization(u"events"_qs, 2);
        CalendarEvent::resetEventStore();
    }
    template <typename Record>
    std::vector<std::shared_ptr<Record>> all()
    {
        const auto found = context().fetch<Record>(Record::fetchRequest());
        return {found.begin(), found.end()};
    }
    int below(int count) { return int(random() % unsigned(count)); }
    bool often() { return below(3) > 0; }
    template <typename Record>
    std::shared_ptr<Record> oneOf(const std::vector<std::shared_ptr<Record>> &records)
    {
        return records[std::size_t(below(int(records.size())))];
    }
    template <typename Owner>
    void addDetails(const Owner &owner)
    {
        const auto own = [&owner](const auto &detail) {
            if constexpr (std::is_same_v<Owner, ContactPtr>)
                detail->setContact(owner);
            else
                detail->setCompany(owner);
        };
        for (int left = below(3); left > 0; --left) {
            const auto phone = context().insert<EntityPhone>();
            phone->setNumber(u"+49 %1"_qs.arg(random()));
            phone->setType(DBWorker::allPhoneType().at(below(9)));
            own(phone);
            const auto email = context().insert<EntityEmail>();
            email->setMail(u"a%1@b.org"_qs.arg(random()));
            email->setType(DBWorker::allEmailType().at(below(4)));
            own(email);
            const auto address = context().insert<EntityAddress>();
            address->setStreet1(u"Große Gasse %1; hinten"_qs.arg(below(99)));
            address->setCity(u"Ulm"_qs);
            address->setAddressType(DBWorker::allAddressType().at(below(3)));
            own(address);
        }
    }
    void addNote(const ContactPtr &person, const QString &title, const QString &detail)
    {
        const auto note = make<EntityNote>(title);
        note->setDetail(detail);
        note->setContact(person);
        note->setCreationDate(utcDate(2026, 9, 1, 8) + Seconds(60.0 * below(1'000)));
    }
    void makeLife()
    {
        std::vector<CompanyPtr> companies;
        for (const QString &title : {u"Works, Ltd"_qs, u"Mill"_qs, u"Grün & \"Söhne\""_qs}) {
            companies.push_back(make<EntityCompany>(title));
            if (often()) {
                companies.back()->setDetails(u"Since 1901\nRings twice"_qs);
                addDetails(companies.back());
            }
        }
        std::vector<std::shared_ptr<EntityContactGroup>> groups = {
            make<EntityContactGroup>(u"Choir"_qs), make<EntityContactGroup>(u"Tea, black"_qs)};
        for (const auto &group : groups)
            group->setUseGeneralFilter(false);
        std::vector<ContactPtr> people;
        for (int number = 0; number < 8; ++number) {
            const auto person = context().insert<EntityContacts>();
            people.push_back(person);
            person->setFirstName(number == 3 ? u""_qs : u"Ann %1"_qs.arg(number));
            person->setLastName(number == 4 ? u""_qs : u"O'Lee, %1"_qs.arg(number));
            for (int left = below(3); left > 0; --left)
                addNote(person, often() ? person->fullName() : u"Tea %1"_qs.arg(left),
                        u"Green %1\nand \"%2\""_qs.arg(below(99)).arg(left));
            // Of some no more is known than that they are there.
            if (number > 5)
                continue;
            addDetails(person);
            if (often())
                person->setCompany(oneOf(companies));
            if (often())
                person->setBirthday(localDate(1950 + below(60), 1 + below(12), 1 + below(28)));
            if (often())
                groups[std::size_t(below(2))]->addRelated("contacts", person);
            if (often())
                person->setContactCategory(DBWorker::allContactCategories().at(below(3)));
            if (number == 1) {
                IcloudManager::saveImageWithData(face, u"face.png"_qs);
                person->setPhotoName(u"face.png"_qs);
            }
        }
        // Those who are in no group are not named by any file.
        for (const auto &group : groups)
            if (group->contacts().empty())
                group->setContacts({people.front()});
        addNote(nullptr, u"Colours"_qs, u"White\n\n=1+1"_qs);
        addNote(nullptr, u"Colours"_qs, u"Blue"_qs);
        std::vector<ProjectPtr> projects;
        for (const QString &title : {u"House rebuilding"_qs, u"Boat"_qs, u"Garden, front"_qs}) {
            projects.push_back(make<EntityProject>(title));
            const ProjectPtr &project = projects.back();
            project->setCreationDate(utcDate(2026, 9, 3, 8));
            project->setStatus(TaskStatus::Open);
            project->setPriority(Priority::None);
            if (often())
                project->setDelegateToUser({people[0], people[std::size_t(1 + below(7))]});
            if (!often())
                continue;
            project->setDetails(u"See the plan"_qs);
            project->setStatus(TaskStatus::InProgress);
            project->setPriority(Priority::High);
            project->setDueDate(localDate(2026, 12, 24, 23, 59, 59));
            project->setCategory(EntityCategory::title(u"Work"_qs));
        }
        for (int number = 0; number < 8; ++number) {
            const TaskPtr task = add(u"Task %1"_qs.arg(number), TaskType::ToDo, {},
                                     localDate(2026, 11, 24 + number % 5, 23, 59, 59));
            task->setCreationDate(utcDate(2026, 9, 4, 8));
            task->setLastModificationDate(utcDate(2026, 9, 5, 8));
            task->setPriority(number % 2 ? Priority::High : Priority::None);
            task->setStatus(TaskStatus::Open);
            if (often())
                task->setProject(oneOf(projects));
            if (often())
                task->setDelegateToUser(oneOf(people));
            if (often())
                task->setCompany(oneOf(companies));
            // Who has a task of a project takes part in it.
            if (task->project() && task->delegateToUser())
                task->project()->addRelated("delegateToUser", task->delegateToUser());
        }
        ASSERT_FALSE(DBWorker::saveContext());
    }
    /// Identifiers of people are those of the store that they are in.
    QStringList life()
    {
        QStringList lines;
        const ContactExport contacts;
        const auto tell = [&](const CNContact &values, QString kind) {
            Lines told;
            told.add(kind).add(values.givenName).add(values.familyName).add(values.organizationName);
            told.add(values.jobTitle).add(values.groups.join(u", "_qs)).add(values.note);
            told.add(values.birthday ? QString::number(*values.birthday->year) : QString());
            told.values(values.phoneNumbers).values(values.emailAddresses);
            for (const auto &[label, place] : values.postalAddresses)
                told.add(label + place.street + place.city);
            return told.add(QString::fromLatin1(values.imageData.toHex())).text();
        };
        for (const auto &person : all<EntityContacts>()) {
            CNContact values = contacts.contactOf(*person);
            std::ranges::sort(values.postalAddresses, {}, [](const auto &one) { return one.value.street; });
            lines << tell(values, u"person"_qs) + Lines().titles(person->project()).text();
        }
        for (const auto &company : all<EntityCompany>()) {
            CNContact values = contacts.contactOf(*company);
            std::ranges::sort(values.postalAddresses, {}, [](const auto &one) { return one.value.street; });
            lines << tell(values, u"company"_qs);
        }
        for (const auto &group : all<EntityContactGroup>())
            lines << u"group "_qs + group->title() + QString::number(group->contacts().size());
        const auto tellCells = [&](const auto &record) {
            const QHash<QString, QString> cells = recordcolumns::cells(*record);
            QStringList said;
            for (auto cell = cells.begin(); cell != cells.end(); ++cell)
                if (!cell.value().isEmpty() && cell.key() != u"Position"_qs)
                    said << cell.key() + u'=' + cell.value();
            said.sort();
            lines << said.join(u'|');
        };
        std::ranges::for_each(all<EntityNote>(), tellCells);
        std::ranges::for_each(all<EntityProject>(), tellCells);
        std::ranges::for_each(all<EntityTask>(), tellCells);
        lines.sort();
        return lines;
    }
    /// Each kind in one of its formats or in both, in any order.
    std::vector<LifeFile> files()
    {
        std::vector<LifeFile> written;
        const auto write = [&](const QString &name, const auto &records, ExportFormat other,
                               bool isOfPeople) {
            const int choice = below(3);
            if (choice != 1)
                written.push_back(
                    {name + u'.' + exportformat::suffixOf(other), exported(other, records), isOfPeople});
            // Pictures are in no table, so that the cards come first.
            if (choice == 1 && name == u"people"_qs)
                written.push_back({u"people.vcf"_qs, exported(ExportFormat::VCard, records), true});
            if (choice != 0)
                written.push_back({name + u".csv"_qs, exported(ExportFormat::Csv, records), isOfPeople});
        };
        write(u"people"_qs, all<EntityContacts>(), ExportFormat::VCard, true);
        write(u"companies"_qs, all<EntityCompany>(), ExportFormat::VCard, true);
        write(u"tasks"_qs, all<EntityTask>(), ExportFormat::ICalendar, false);
        write(u"projects"_qs, all<EntityProject>(), ExportFormat::ICalendar, false);
        write(u"notes"_qs, all<EntityNote>(), ExportFormat::ICalendar, false);
        std::ranges::shuffle(written, random);
        const auto at = [&](const QString &name) {
            return std::ranges::find(written, name, &LifeFile::name);
        };
        if (at(u"people.csv"_qs) < at(u"people.vcf"_qs) && at(u"people.vcf"_qs) != written.end())
            std::iter_swap(at(u"people.csv"_qs), at(u"people.vcf"_qs));
        return written;
    }
    void forget()
    {
        const auto remove = [this](const auto &records) {
            for (const auto &record : records)
                context().deleteObject(record);
        };
        remove(all<EntityTask>());
        remove(all<EntityProject>());
        remove(all<EntityNote>());
        remove(all<EntityContacts>());
        remove(all<EntityCompany>());
        remove(all<EntityContactGroup>());
        ASSERT_FALSE(DBWorker::saveContext());
    }
    /// What is in one list and not in the other, as often.
    static QStringList beyond(QStringList one, const QStringList &other)
    {
        for (const QString &line : other)
            one.removeOne(line);
        return one;
    }
    /// How many records are new.
    int read(const LifeFile &one)
    {
        if (!one.isOfPeople) {
            TaskImport import;
            QBuffer device;
            device.setData(one.text);
            device.open(QIODevice::ReadOnly);
            import.addFile(device, one.name);
            const TaskImportAccount account = import.import();
            EXPECT_TRUE(account.newerHere.isEmpty() && account.refused.isEmpty() && account.partial.isEmpty())
                << account.sentences().join(u'\n').toStdString();
            return account.added;
        }
        QFile table(folder.filePath(one.name));
        EXPECT_TRUE(table.open(QIODevice::WriteOnly));
        table.write(one.text);
        table.close();
        ImportableContacts list;
        list.add(ContactCards::ofFile(table.fileName()));
        while (list.readSome(1'000)) {
        }
        EXPECT_TRUE(list.problems().isEmpty()) << list.problems().join(u'\n').toStdString();
        list.list().markShown(true);
        const ContactImportAccount account = list.import([](const QByteArray &image) { return image; });
        EXPECT_TRUE(account.poorer.isEmpty() && account.namesakes.isEmpty() && account.refused.isEmpty())
            << account.sentences().join(u'\n').toStdString();
        return account.added + int(account.filledContacts.size()) + account.addedCompanies + account.groups;
    }

    std::mt19937 random{testSeed()};
    QTemporaryDir folder;
};

TEST_F(CarryTest, GeneratedLivesComeBackInAnyOrderAndNothingTwice)
{
    for (int round = 0; round < 12; ++round) {
        forget();
        makeLife();
        const QStringList former = life();
        const std::vector<LifeFile> written = files();
        QStringList order;
        for (const LifeFile &one : written)
            order << one.name;
        SCOPED_TRACE(qPrintable(order.join(u", "_qs)));
        forget();
        for (const LifeFile &one : written)
            read(one);
        ASSERT_EQ(beyond(life(), former), QStringList());
        ASSERT_EQ(beyond(former, life()), QStringList());
        for (const LifeFile &one : written)
            EXPECT_EQ(read(one), 0) << qPrintable(one.name) << " once more";
        ASSERT_EQ(beyond(life(), former), QStringList());
        ASSERT_EQ(beyond(former, life()), QStringList());
    }
}

} // namespace
