// The sample: what it holds, how it is put in place, how its dates become those of today, and what it leaves
// alone.

#include "CoreTest.h"

#include "cloud/IcloudManager.h"
#include "filters/SavedFilter.h"
#include "foundation/Calendar.h"
#include "records/dates/MTDates.h"
#include "store/SampleStore.h"
#include "store/StartWindowController.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <sqlite3.h>

using namespace Qt::Literals::StringLiterals;

namespace {

class Sample : public CoreTest
{
protected:
    ~Sample() override { SampleStore::setFolder({}); }

    static QString samplePath() { return FileManager::appFolderURL() + u"/Model11.sqlite"_s; }
    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// The seeds come first: the number of tasks alone says whether the sample is there.
    static int taskCount() { return int(DBWorker::allTasks().size()); }
    TaskPtr task(const QString &title)
    {
        return context().fetchFirst<EntityTask>(
            EntityTask::fetchRequest().where(Predicate::format("title = %@", title)));
    }
    TaskPtr own(const QString &title, OptionalDate start, OptionalDate due,
                TaskStatus status = TaskStatus::Open)
    {
        const auto made = context().insert<EntityTask>();
        made->setTitle(title);
        made->setStartDate(start);
        made->setDueDate(due);
        made->setStatus(status);
        EXPECT_FALSE(DBWorker::saveContext());
        return made;
    }
};

TEST_F(Sample, ShowsADayOfABelievableLife)
{
    ASSERT_TRUE(StartWindowController::openBrowseSample());
    EXPECT_TRUE(DBWorker::isSample());
    const auto all = DBWorker::allTasks();
    EXPECT_GT(all.size(), 80);
    std::set<TaskType> types;
    std::set<TaskStatus> statuses;
    for (const TaskPtr &one : all) {
        EXPECT_NE(one->category(), nullptr) << qPrintable(one->title());
        types.insert(one->type().value());
        statuses.insert(one->status().value());
        EXPECT_FALSE(one->alert()) << "its alerts would ring for nobody";
    }
    EXPECT_EQ(types.size(), allTaskTypes.size());
    EXPECT_EQ(statuses.size(), allTaskStatuses.size());
    for (const ProjectPtr &project : DBWorker::allProjects())
        EXPECT_NE(project->category(), nullptr) << qPrintable(project->title());
    EXPECT_GT(DBWorker::allInboxTasks().size(), 5);
    EXPECT_GT(DBWorker::countStaleTasks(), 2);
    EXPECT_GT(DBWorker::allNote().size(), 8);
    EXPECT_EQ(DBWorker::allContactPrivateGroup().size(), 2);
    EXPECT_EQ(DBWorker::allContactPrivateList().size(), 1);
    int withPicture = 0;
    for (const ContactPtr &person : EntityContacts::contacts())
        withPicture += person->photoName().isEmpty() ? 0 : 1;
    EXPECT_EQ(withPicture, 8);
    for (const CompanyPtr &company : DBWorker::allCompany()) {
        const QString picture = company->photoName();
        EXPECT_TRUE(picture.isEmpty() || IcloudManager::imageData(picture).startsWith("\x89PNG"));
    }
    EXPECT_FALSE(DBWorker::searchEntityWithString(u"limestone"_s).isEmpty()) << "it is found by the search";
    EXPECT_FALSE(context().canUndo()) << "nothing of it is a step of the user";
}

TEST_F(Sample, BeginsOnTheSameDayAndAtTheSameHourWhereverTheClockStands)
{
    ASSERT_TRUE(StartWindowController::openBrowseSample());
    EXPECT_EQ(wallClock(*task(u"Send the samples of the woven seat"_s)->startDate()),
              u"2026-11-20 00:00:00 +0100"_s);
    EXPECT_EQ(wallClock(*task(u"Send the samples of the woven seat"_s)->dueDate()),
              u"2026-11-20 23:59:00 +0100"_s);
    EXPECT_EQ(wallClock(*task(u"Daniel Okafor: fabrics and feet"_s)->startDate()),
              u"2026-11-21 10:00:00 +0100"_s);
    EXPECT_EQ(wallClock(*task(u"Call the insurance about the van"_s)->dueDate()),
              u"2026-11-18 11:00:00 +0100"_s);
}

TEST_F(Sample, IsCleanEachTimeAndTheOwnRecordsStayWhatTheyAre)
{
    own(u"mine"_s, {}, {});
    ASSERT_TRUE(StartWindowController::openBrowseSample());
    const int count = taskCount();
    own(u"in between"_s, {}, {});
    SavedFilter::ofTasks(0).storePristine();
    ASSERT_TRUE(StartWindowController::openBrowseSample());
    EXPECT_EQ(taskCount(), count);
    EXPECT_EQ(task(u"mine"_s), nullptr);
    ASSERT_TRUE(StartWindowController::openStarted());
    EXPECT_FALSE(DBWorker::isSample());
    EXPECT_EQ(taskCount(), 1);
    EXPECT_NE(task(u"mine"_s), nullptr);
    EXPECT_TRUE(context().canUndo()) << "each store has a history of its own";
    ManagedObjectContext *const former = &context();
    ASSERT_TRUE(StartWindowController::openStarted());
    EXPECT_EQ(&context(), former) << "what is in use already stays open";
}

TEST_F(Sample, StaysOnOverARestart)
{
    ASSERT_TRUE(StartWindowController::openBrowseSample());
    const int count = taskCount();
    own(u"added"_s, {}, {});
    quit();
    launch();
    EXPECT_TRUE(DBWorker::isSample());
    EXPECT_EQ(taskCount(), count + 1);
}

TEST_F(Sample, MovesTheDatesOnlyIfItIsOlderThanADay)
{
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
    const auto day = [](int number, int hour = 0) { return localDate(2026, 10, number, hour); };
    StartWindowController::makeCorectSmpleDates();
    own(u"done"_s, day(1), day(2), TaskStatus::Done);
    StartWindowController::makeCorectSmpleDates();
    EXPECT_EQ(task(u"done"_s)->startDate(), day(1)) << "no open task says how old it is";
    own(u"call"_s, {}, day(3, 11));
    // The clocks went back in between.
    own(u"first"_s, day(20), day(21, 9));
    own(u"later"_s, day(30, 8), {});
    const auto project = context().insert<EntityProject>();
    project->setStartDate(day(4));
    StartWindowController::makeCorectSmpleDates();
    EXPECT_EQ(wallClock(*task(u"first"_s)->startDate()), u"2026-11-20 00:00:00 +0100"_s);
    EXPECT_EQ(wallClock(*task(u"first"_s)->dueDate()), u"2026-11-21 09:00:00 +0100"_s);
    EXPECT_EQ(wallClock(*task(u"later"_s)->startDate()), u"2026-11-30 08:00:00 +0100"_s);
    EXPECT_FALSE(task(u"later"_s)->dueDate());
    EXPECT_EQ(wallClock(*task(u"call"_s)->dueDate()), u"2026-11-03 11:00:00 +0100"_s);
    EXPECT_EQ(wallClock(*task(u"done"_s)->startDate()), u"2026-11-01 00:00:00 +0100"_s);
    EXPECT_EQ(wallClock(*project->startDate()), u"2026-11-04 00:00:00 +0100"_s);
    EXPECT_FALSE(context().hasChanges());
    StartWindowController::makeCorectSmpleDates();
    EXPECT_EQ(wallClock(*task(u"first"_s)->startDate()), u"2026-11-20 00:00:00 +0100"_s)
        << "yesterday is not old";
    for (const TaskPtr &one : DBWorker::allTasks()) {
        if (one->title() != u"later"_s)
            one->setStatus(TaskStatus::Done);
    }
    task(u"later"_s)->setStartDate(localDate(2026, 11, 19, 8));
    StartWindowController::makeCorectSmpleDates();
    EXPECT_EQ(task(u"later"_s)->startDate(), localDate(2026, 11, 20, 8)) << "the day before yesterday is";
}

TEST_F(Sample, ADamagedOrMissingOneIsEmptyAndTouchesNothingElse)
{
    own(u"mine"_s, {}, {});
    const QTemporaryDir prepared;
    QByteArray damaged = bytesOf(SampleStore::folder() + u"/Model11.sqlite"_s);
    ASSERT_GT(damaged.size(), 100000);
    for (qsizetype place = 40000; place < 60000; ++place)
        damaged[place] = char(0xa5);
    const QByteArray newer = [] {
        QByteArray bytes = bytesOf(SampleStore::folder() + u"/Model11.sqlite"_s);
        bytes[62] = char(0x7f); // The version of the schema.
        return bytes;
    }();
    SampleStore::setFolder(prepared.path());
    const LogCapture log;
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("not a store"), damaged, damaged.left(50000), newer}) {
        if (!bytes.isEmpty())
            write(prepared.filePath(u"Model11.sqlite"_s), bytes);
        ASSERT_TRUE(StartWindowController::openBrowseSample());
        EXPECT_EQ(taskCount(), 0);
        EXPECT_FALSE(DBWorker::allCategories().empty()) << "it can be worked with";
        ASSERT_TRUE(StartWindowController::openStarted());
        EXPECT_EQ(taskCount(), 1);
        EXPECT_FALSE(QFile::exists(samplePath() + u".new"_s));
    }
    EXPECT_EQ(log.lines().filter(u"Failed to create writable database file with message '"_s).size(), 4)
        << qPrintable(log.lines().join(u'\n'));
}

TEST_F(Sample, AKillInTheMiddleOfTheCopyLeavesAProgramThatStarts)
{
    own(u"mine"_s, {}, {});
    ASSERT_TRUE(StartWindowController::openBrowseSample());
    quit();
    // Half a copy beside none; a log whose store is gone; a store that is cut short.
    const QByteArray whole = bytesOf(SampleStore::folder() + u"/Model11.sqlite"_s);
    const auto start = [this](const QByteArray &store, const QByteArray &log, const QByteArray &fresh) {
        for (const auto &[suffix, bytes] : {std::pair(u""_s, store), {u"-wal"_s, log}, {u".new"_s, fresh}}) {
            QFile::remove(samplePath() + suffix);
            if (!bytes.isEmpty())
                write(samplePath() + suffix, bytes);
        }
        launch();
        EXPECT_TRUE(DBWorker::isSample());
        EXPECT_FALSE(DBWorker::allCategories().empty());
        ASSERT_TRUE(StartWindowController::openBrowseSample());
        EXPECT_GT(taskCount(), 80);
        EXPECT_FALSE(QFile::exists(samplePath() + u".new"_s));
        quit();
    };
    start({}, {}, whole.left(whole.size() / 2));
    start({}, QByteArray(5000, 'x'), {});
    start(whole.left(whole.size() / 2), {}, {});
    launch();
    ASSERT_TRUE(StartWindowController::openStarted());
    EXPECT_NE(task(u"mine"_s), nullptr);
}

TEST_F(Sample, APictureOfTheSameNameStays)
{
    ASSERT_TRUE(IcloudManager::saveImageWithData("mine", u"sample-tom.png"_s));
    EXPECT_TRUE(StartWindowController::imageExist(u"sample-tom.png"_s));
    EXPECT_FALSE(StartWindowController::imageExist(u"sample-ben.png"_s));
    StartWindowController::copySampleImages();
    EXPECT_EQ(IcloudManager::imageData(u"sample-tom.png"_s), "mine");
    EXPECT_TRUE(StartWindowController::imageExist(u"sample-ben.png"_s));
}

TEST_F(Sample, RandomTextsAreLowerCaseLetters)
{
    const QString text = StartWindowController::generateRandomString(200);
    EXPECT_EQ(text.size(), 200);
    EXPECT_TRUE(QRegularExpression(u"^[a-z]+$"_s).match(text).hasMatch());
    EXPECT_NE(text, StartWindowController::generateRandomString(200));
    EXPECT_EQ(StartWindowController::generateRandomString(-1), QString());
}

} // namespace
