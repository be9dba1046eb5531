#include "StoreGenerator.h"

#include "foundation/Clock.h"
#include "objectstore/ManagedObjectContext.h"
#include "records/dates/MTDates.h"
#include "store/entities/Entities.h"
#include "store/entities/Model.h"

#include <sqlite3.h>

#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr int projectCount = 40;
constexpr int categoryCount = 20;
constexpr int contactCount = 200;
constexpr int yearsOfDates = 4;
constexpr double secondsPerDay = 86400;
/// A word of few titles, for searches that find up to two hundred records.
const QString rareWord = QStringLiteral("quvexizowafy");
constexpr double rareShare = 0.0015;

[[noreturn]] void endFor(const QString &reason)
{
    std::fprintf(stderr, "The store cannot be generated: %s\n", qUtf8Printable(reason));
    std::exit(EXIT_FAILURE);
}

class Generator
{
public:
    Generator(const QString &path, unsigned seed)
        : random(seed)
    {
        auto opened = ManagedObjectContext::open(path, organiserModel());
        if (!opened)
            endFor(opened.error().message);
        storeIdentifier = (*opened)->storeIdentifier();
        addRecords(**opened);
        opened->reset();
        if (sqlite3_open(path.toUtf8().constData(), &database) != SQLITE_OK)
            endFor(path);
        run("PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF; BEGIN");
        for (int number = 0; number < projectCount; ++number)
            addIndex(EntityProject::entityName, projects[size_t(number)], {u"Project %1"_qs.arg(number)});
        for (size_t number = 0; number < names.size(); ++number)
            addIndex(EntityContacts::entityName, contacts[number], {names[number]});
    }
    ~Generator()
    {
        // It has written the texts of its rows itself.
        run("DELETE FROM ObjectStoreElsewhere; COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
        sqlite3_finalize(taskStatement);
        sqlite3_finalize(indexStatement);
        sqlite3_close(database);
    }

    void addTask(int number)
    {
        const bool isDone = chance(0.3);
        const bool isDated = chance(0.6);
        const int type = chance(0.6) ? 0 : chance(0.5) ? 1 : 2;
        const QString id = uuid();
        const QString title = sentence(3 + pick(5)) + (chance(rareShare) ? u' ' + rareWord : QString());
        const QString details = chance(0.4) ? sentence(8 + pick(20)) : QString();
        Row row(task());
        row.text(id).text(title).text(details).integer(type).integer(isDone ? 3 : pick(3)).integer(pick(4));
        addDates(row, type, isDated);
        row.integer(isDated ? 0 : chance(0.2)).real(now - pick(1000) * secondsPerDay);
        isDone ? row.real(now - pick(700) * secondsPerDay) : row.null();
        !isDated &&type == 0 ? row.integer(number) : row.null();
        isDated &&chance(0.05) ? row.text(u"RRULE:FREQ=WEEKLY;INTERVAL=1"_qs) : row.null();
        const int category = pick(categoryCount + 5);
        const int project = pick(projectCount * 3);
        const int contact = pick(contactCount * 4);
        category < categoryCount ? row.text(categories[size_t(category)]) : row.null();
        project < projectCount ? row.text(projects[size_t(project)]) : row.null();
        contact < contactCount ? row.text(contacts[size_t(contact)]) : row.null();
        row.run();
        QStringList texts = {title, details};
        if (category < categoryCount)
            texts.append(u"Category %1"_qs.arg(category));
        if (project < projectCount) {
            texts.append(u"Project %1"_qs.arg(project));
            addIndex(EntityProject::entityName, projects[size_t(project)], {title});
        }
        if (contact < contactCount) {
            texts.append(names[size_t(contact)]);
            addIndex(EntityContacts::entityName, contacts[size_t(contact)], {title});
        }
        addIndex(EntityTask::entityName, id, texts);
    }

    /// A contact whom nothing is delegated to.
    void addContact()
    {
        const QString id = uuid();
        const QString first = word();
        const QString last = word();
        Row(person()).text(id).text(first).text(last).run();
        addIndex(EntityContacts::entityName, id, {first, last});
    }

private:
    /// The bindings of one statement, in order.
    class Row
    {
    public:
        explicit Row(sqlite3_stmt *prepared)
            : statement(prepared)
        {}
        Row &text(const QString &value)
        {
            const QByteArray bytes = value.toUtf8();
            sqlite3_bind_text(statement, ++place, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
            return *this;
        }
        Row &integer(int value)
        {
            sqlite3_bind_int(statement, ++place, value);
            return *this;
        }
        Row &real(double value)
        {
            sqlite3_bind_double(statement, ++place, value);
            return *this;
        }
        Row &null()
        {
            sqlite3_bind_null(statement, ++place);
            return *this;
        }
        void run()
        {
            if (sqlite3_step(statement) != SQLITE_DONE)
                endFor(QString::fromUtf8(sqlite3_errmsg(sqlite3_db_handle(statement))));
            sqlite3_reset(statement);
        }

    private:
        sqlite3_stmt *statement;
        int place = 0;
    };

    void addRecords(ManagedObjectContext &context)
    {
        for (int number = 0; number < categoryCount; ++number) {
            const auto category = context.insert<EntityCategory>();
            category->setTitle(u"Category %1"_qs.arg(number));
            category->setIndex(6 + number);
            categories.push_back(category->identifier());
        }
        for (int number = 0; number < projectCount; ++number) {
            const auto project = context.insert<EntityProject>();
            project->setTitle(u"Project %1"_qs.arg(number));
            projects.push_back(project->identifier());
        }
        for (int number = 0; number < contactCount; ++number) {
            const auto contact = context.insert<EntityContacts>();
            contact->setFirstName(word());
            contact->setLastName(word());
            contacts.push_back(contact->identifier());
            names.push_back(contact->firstName() + u' ' + contact->lastName());
        }
        if (auto error = context.save())
            endFor(error->message);
    }
    void addDates(Row &row, int type, bool isDated)
    {
        if (!isDated) {
            row.null().null();
            return;
        }
        const double day = now + (pick(yearsOfDates * 365) - yearsOfDates * 365 / 2) * secondsPerDay;
        const Date start = MTDates::startOfCurrentDay(Date::fromReferenceSeconds(day));
        if (type == 0) {
            row.real(start.referenceSeconds())
                .real((MTDates::endOfCurrentDay(start) - Seconds(59)).referenceSeconds());
            return;
        }
        const double moment = start.referenceSeconds() + 8 * 3600 + pick(40) * 900;
        type == 1 ? row.real(moment) : row.null();
        row.real(moment + (type == 1 ? 3600 : 0));
    }
    /// The texts by which a record is found, as the program writes them.
    void addIndex(std::string_view entity, const QString &id, const QStringList &texts)
    {
        for (const QString &text : texts) {
            if (!text.isEmpty())
                Row(index())
                    .text(uuid())
                    .text(u"x-morvane://%1/%2/%3"_qs.arg(
                        storeIdentifier, QLatin1String(entity.data(), qsizetype(entity.size())), id))
                    .text(text)
                    .run();
        }
    }

    sqlite3_stmt *task()
    {
        return prepared(
            taskStatement,
            "INSERT INTO EntityTask (id, title, details, type, status, priority, startDate, dueDate, "
            "dueSomeDay, creationDate, expirationDate, position, repeat, category, project, delegateToUser) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    }
    sqlite3_stmt *person()
    {
        return prepared(personStatement,
                        "INSERT INTO EntityContacts (id, firstName, lastName) VALUES (?, ?, ?)");
    }
    sqlite3_stmt *index()
    {
        return prepared(indexStatement,
                        "INSERT INTO EntitySearchIndex (id, objectId, string) VALUES (?, ?, ?)");
    }
    sqlite3_stmt *prepared(sqlite3_stmt *&statement, const char *sql)
    {
        if (!statement && sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
            endFor(QString::fromUtf8(sqlite3_errmsg(database)));
        return statement;
    }
    void run(const char *sql)
    {
        if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            endFor(QString::fromUtf8(sqlite3_errmsg(database)));
    }

    bool chance(double probability) { return std::uniform_real_distribution<>(0, 1)(random) < probability; }
    int pick(int count) { return std::uniform_int_distribution<>(0, count - 1)(random); }
    QString uuid()
    {
        static const char digits[] = "0123456789abcdef";
        QString text;
        for (int place = 0; place < 36; ++place)
            text += place == 8 || place == 13 || place == 18 || place == 23 ? QChar(u'-')
                                                                            : QLatin1Char(digits[pick(16)]);
        return text;
    }
    QString word()
    {
        static const char16_t *const syllables[] = {u"ka",  u"lo", u"mi",  u"ren", u"tu",
                                                    u"sel", u"ba", u"dor", u"né",  u"ßi"};
        QString text;
        for (int count = 1 + pick(3); count >= 0; --count)
            text += QString::fromUtf16(syllables[pick(10)]);
        return text;
    }
    QString sentence(int words)
    {
        QStringList all;
        for (int count = 0; count < words; ++count)
            all.append(word());
        return all.join(u' ');
    }

    std::mt19937 random;
    double now = Clock::now().referenceSeconds();
    QString storeIdentifier;
    std::vector<QString> categories, projects, contacts, names;
    sqlite3 *database = nullptr;
    sqlite3_stmt *taskStatement = nullptr;
    sqlite3_stmt *personStatement = nullptr;
    sqlite3_stmt *indexStatement = nullptr;
};

} // namespace

void generateStore(const QString &path, int tasks, unsigned seed, int contacts)
{
    {
        Generator generator(path, seed);
        for (int number = 1; number <= tasks; ++number)
            generator.addTask(number);
        for (int number = 0; number < contacts; ++number)
            generator.addContact();
    }
    auto opened = ManagedObjectContext::open(path, organiserModel());
    if (!opened)
        endFor(opened.error().message);
    while ((*opened)->tendSubstringIndexes()) {
    }
}
