#include "ExchangeFixture.h"

#include <QFileInfo>
#include <QProcess>

#include <random>

// Two programs save and exchange without a pause, and are killed at random moments: while they write to
// their store or to the folder, take in, make a snapshot or clear. What they said was saved is on both in the
// end.

namespace {

using replication::Replica;
using replication::ReplicaExchange;

constexpr auto storeVariable = "MORVANE_TEST_STORE";
constexpr auto folderVariable = "MORVANE_TEST_FOLDER";

/// A store at a place, in step with a folder.
struct Program
{
    Program(const QString &store, const QString &folder)
    {
        auto opened = ManagedObjectContext::open(store, libraryModel());
        EXPECT_TRUE(opened) << opened.error().message.toStdString();
        context = std::move(*opened);
        auto its = Replica::open(*context, QFileInfo(store).fileName(), store.toUtf8());
        EXPECT_TRUE(its) << its.error().message.toStdString();
        replica = std::move(*its);
        replication::SnapshotTerms terms;
        terms.mostFiles = 10;
        exchange = std::make_unique<ReplicaExchange>(
            *replica, replication::ReplicaFolder(folder), [](const StoreChanges &) {}, nullptr, terms);
    }
    ~Program()
    {
        exchange.reset();
        replica.reset();
    }
    QStringList rows() const
    {
        QStringList list;
        for (const char *sql :
             {"SELECT id || '|' || title || '|' || IFNULL(pages, '') || '|' || IFNULL(shelf, '') "
              "FROM Book ORDER BY id",
              "SELECT id || '|' || name FROM Shelf ORDER BY id"}) {
            sqlite::Statement all = context->connection().prepare(sql);
            while (all.step())
                list.append(all.text(0));
        }
        return list;
    }

    std::unique_ptr<ManagedObjectContext> context;
    std::unique_ptr<Replica> replica;
    std::unique_ptr<ReplicaExchange> exchange;
};

class Child
{
public:
    Child(QString store, QString folder)
        : storePath(std::move(store))
        , folderPath(std::move(folder))
    {}
    void start()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(storeVariable), storePath);
        environment.insert(QString::fromLatin1(folderVariable), folderPath);
        process = std::make_unique<QProcess>();
        process->setProcessEnvironment(environment);
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->start(QCoreApplication::applicationFilePath(),
                       {u"--gtest_also_run_disabled_tests"_qs,
                        u"--gtest_filter=GeneratedKillsTest.DISABLED_SavesUntilItIsKilled"_qs});
        ASSERT_TRUE(process->waitForStarted());
    }
    /// What it said that it had saved is kept.
    void kill()
    {
        process->kill();
        process->waitForFinished();
        for (const QByteArray &line : process->readAllStandardOutput().split('\n')) {
            if (line.startsWith("saved ") && line.endsWith('.'))
                saved.insert(QString::fromUtf8(line.mid(6).chopped(1)));
        }
    }
    std::set<QString> saved;

private:
    QString storePath;
    QString folderPath;
    std::unique_ptr<QProcess> process;
};

} // namespace

TEST(GeneratedKillsTest, DISABLED_SavesUntilItIsKilled)
{
    if (!qEnvironmentVariableIsSet(storeVariable))
        GTEST_SKIP() << "It is a part of the other test.";
    Program program(qEnvironmentVariable(storeVariable), qEnvironmentVariable(folderVariable));
    std::mt19937 random(std::random_device{}());
    const QDeadlineTimer deadline(60'000);
    for (int number = 0; !deadline.hasExpired(); ++number) {
        const QString title = QString::number(random(), 16) + u'-' + QString::number(number);
        const auto book = program.context->insert<Book>();
        book->setTitle(title);
        if (number % 4 == 0) {
            const auto shelf = program.context->insert<Shelf>();
            shelf->setName(title);
            book->setShelf(shelf);
        }
        // Rows of the other one are edited, too, and never deleted.
        const auto all = program.context->fetch<Book>(FetchRequest("Book"));
        all[static_cast<int>(random() % static_cast<unsigned>(all.size()))]->setPages(number);
        if (!program.context->save()) {
            printf("saved %s.\n", title.toUtf8().constData());
            fflush(stdout);
        }
        program.exchange->lookSoon();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

TEST(GeneratedKillsTest, EndWithAllThatWasSavedOnBoth)
{
    std::mt19937 random(testSeed());
    const int kills = qEnvironmentVariableIntValue("MORVANE_TEST_KILLS");
    const QTemporaryDir home;
    const QString folder = home.filePath(u"shared"_qs);
    const std::array<QString, 2> stores = {home.filePath(u"one.sqlite"_qs),
                                           home.filePath(u"other.sqlite"_qs)};
    std::array<Child, 2> children = {Child(stores[0], folder), Child(stores[1], folder)};
    for (Child &child : children)
        child.start();
    for (int round = 0; round < (kills > 0 ? kills : 4); ++round) {
        const QDeadlineTimer pause(300 + static_cast<int>(random() % 1200));
        while (!pause.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        Child &child = children[random() % 2];
        child.kill();
        child.start();
    }
    std::set<QString> saved;
    for (Child &child : children) {
        child.kill();
        saved.merge(child.saved);
    }
    ASSERT_FALSE(saved.empty());
    const Program one(stores[0], folder);
    const Program other(stores[1], folder);
    const QDeadlineTimer deadline(60'000);
    while ((one.rows() != other.rows() || one.rows().isEmpty()) && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 200);
    EXPECT_EQ(one.rows(), other.rows());
    const QString all = one.rows().join(u'\n');
    for (const QString &title : saved)
        EXPECT_TRUE(all.contains(u'|' + title)) << qPrintable(title);
    for (const Program *program : {&one, &other}) {
        EXPECT_EQ(
            program->context->connection().queryInteger("SELECT COUNT(*) FROM pragma_foreign_key_check"), 0);
        EXPECT_TRUE(program->exchange->health().problems.empty());
    }
}
