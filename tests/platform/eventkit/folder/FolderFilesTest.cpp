#include "FolderFixture.h"

#include "eventkit/CalendarError.h"
#include "support/FullDisk.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

/// The tree of files itself, and others who write in it at the same time.
class FolderFilesTest : public FolderFixture
{
protected:
    const QByteArray good = eventText("good", "DTSTART:20240304T090000\nSUMMARY:Good\n");

    void writeAt(const QString &relativePath, const QByteArray &contents)
    {
        const QString full = root + u'/' + relativePath;
        QDir().mkpath(QFileInfo(full).path());
        QFile file(full);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    static bool waitFor(const std::function<bool()> &condition)
    {
        const QDeadlineTimer deadline(5000);
        while (!condition()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        }
        return true;
    }
};

TEST_F(FolderFilesTest, SourcesAndCalendarsAreToldByTheirSmallFiles)
{
    writeAt(u"server/type"_qs, "CalDAV\n");
    writeAt(u"server/displayname"_qs, "iCloud\n");
    writeAt(u"server/one/displayname"_qs, "  First  \n");
    writeAt(u"server/one/color"_qs, "#ff8000\n");
    writeAt(u"server/two/color"_qs, "green-ish");
    writeAt(u"server/.hidden/x.ics"_qs, good);
    writeAt(u"office/type"_qs, "exchange");
    QStringList sources;
    const auto foundSources = store.sources();
    for (const EKSource &source : foundSources.value())
        sources.append(source.title + QString::number(static_cast<int>(source.sourceType)));
    EXPECT_EQ(sources, (QStringList{u"home0"_qs, u"iCloud2"_qs, u"office1"_qs}));
    QStringList calendars;
    const auto foundCalendars = store.calendarsForEntityType(EKEntityType::Event);
    for (const EKCalendar &calendar : foundCalendars.value())
        calendars.append(calendar.calendarIdentifier + u'=' + calendar.title);
    EXPECT_EQ(calendars, (QStringList{u"home/work=work"_qs, u"server/one=First"_qs, u"server/two=two"_qs}));
    EXPECT_EQ(foundCalendars.value()[1].color, (EKColor{1, 128 / 255.0, 0, 1}));
    EXPECT_FALSE(foundCalendars.value()[2].color);
}

TEST_F(FolderFilesTest, AnEmptyPlaceHasALocalSourceForTheFirstCalendar)
{
    const QString nowhere = root + u"/not/yet"_qs;
    EKEventStore empty(std::make_shared<FolderBackend>(nowhere));
    EXPECT_TRUE(empty.calendarsForEntityType(EKEntityType::Event).value().empty());
    EXPECT_FALSE(empty.defaultCalendarForNewEvents());
    EKCalendar made;
    made.title = u"Mine"_qs;
    made.source = empty.sources().value().at(0);
    EXPECT_EQ(made.source, (EKSource{u"Local"_qs, EKSourceType::Local, u"local"_qs}));
    EXPECT_FALSE(empty.saveCalendar(made, true));
    EXPECT_EQ(made.calendarIdentifier, u"local/Mine"_qs);
    EXPECT_EQ(empty.defaultCalendarForNewEvents(), made);
    EKCalendar same = made;
    same.calendarIdentifier.clear();
    EXPECT_FALSE(empty.saveCalendar(same, true));
    EXPECT_NE(same.calendarIdentifier, made.calendarIdentifier);
    EXPECT_EQ(same.title, u"Mine"_qs);
}

TEST_F(FolderFilesTest, RemovingACalendarKeepsToItsFolder)
{
    writeAt(u"home/other/a.ics"_qs, good);
    QDir().mkpath(root + u"/elsewhere"_qs);
    writeAt(u"../outside.ics"_qs, good);
    const QTemporaryDir target;
    QFile(target.path() + u"/a.ics"_qs).open(QIODevice::WriteOnly);
    QFile::link(target.path(), root + u"/home/linked"_qs);
    for (const QString &identifier :
         {u"home/linked"_qs, u"home/work"_qs, u"home/.."_qs, u".."_qs, u"home"_qs, QString()})
        EXPECT_FALSE(backend->removeCalendar(identifier));
    EXPECT_TRUE(QFile::exists(target.path() + u"/a.ics"_qs));
    EXPECT_TRUE(QFile::exists(root + u"/home/other/a.ics"_qs));
    EXPECT_EQ(QDir(root + u"/home"_qs).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{u"other"_qs}));
    QFile::remove(root + u"/../outside.ics"_qs);
}

TEST_F(FolderFilesTest, FilesThatOthersWriteAreSeenAtTheNextQuestion)
{
    write(u"a.ics"_qs, good);
    EXPECT_EQ(titles(), (QStringList{u"Good"_qs}));
    // In place, of the same size, within the same tick of the clock of files.
    for (int round = 0; round < 20; ++round) {
        const QByteArray title = "G" + QByteArray::number(100 + round);
        write(u"a.ics"_qs, QByteArray(good).replace("Good", title));
        EXPECT_EQ(titles(), (QStringList{QString::fromLatin1(title)}));
    }
    QFile::rename(path(u"a.ics"_qs), path(u"b.ics"_qs));
    EXPECT_EQ(titles().size(), 1);
    QFile::remove(path(u"b.ics"_qs));
    EXPECT_TRUE(titles().isEmpty());
}

TEST_F(FolderFilesTest, AFileThatIsBeingWrittenAnewIsNotGone)
{
    const auto lookUp = [this] { return store.calendarItemsWithExternalIdentifier(u"good"_qs); };
    write(u"a.ics"_qs, good);
    // Its folder then no longer looks as if somebody were at work.
    QThread::msleep(80);
    const LogCapture log;
    const QByteArray tooMuch(65 * 1024 * 1024, ' ');
    for (const QByteArray &beginning : {QByteArray(), good.left(20), good.left(60), tooMuch}) {
        EXPECT_EQ(titles(), (QStringList{u"Good"_qs}));
        write(u"a.ics"_qs, beginning);
        EXPECT_EQ(titles(), QStringList());
        EXPECT_TRUE(store.mayBeUnusable(u"good"_qs)) << beginning.size();
        EXPECT_FALSE(store.mayBeUnusable(u"other"_qs)) << beginning.size();
        const auto whileAway = lookUp();
        ASSERT_FALSE(whileAway) << beginning.size();
        EXPECT_EQ(whileAway.error().code, CalendarError::Unreadable);
        write(u"a.ics"_qs, good);
        const auto found = lookUp();
        ASSERT_TRUE(found) << beginning.size();
        EXPECT_EQ(found.value().size(), 1u) << beginning.size();
        EXPECT_FALSE(store.mayBeUnusable(u"good"_qs));
    }
    EXPECT_EQ(log.lines(), (QStringList{u"Cannot use home/work/a.ics: there is no calendar in it."_qs,
                                        u"Cannot use home/work/a.ics: it is cut off."_qs,
                                        u"Cannot read %1: it is too large"_qs.arg(path(u"a.ics"_qs))}))
        << "each once";
    write(u"new.ics"_qs, {});
    EXPECT_TRUE(store.mayBeUnusable(u"other"_qs)) << "nobody knows what it will be";
}

TEST_F(FolderFilesTest, AnEditThatSetsTheDateBackIsSeen)
{
    const QDateTime longAgo(QDate(2020, 1, 1), QTime(12, 0));
    for (const QByteArray title : {"Good", "Fine", "Well"}) {
        write(u"a.ics"_qs, QByteArray(good).replace("Good", title));
        QFile file(path(u"a.ics"_qs));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
        EXPECT_EQ(titles(), (QStringList{QString::fromLatin1(title)}));
    }
}

TEST_F(FolderFilesTest, AWriteThatComesInBetweenIsNotLost)
{
    write(u"a.ics"_qs, good);
    EKEvent event = events().at(0);
    event.title = u"Mine"_qs;
    write(u"a.ics"_qs, QByteArray(good).replace("SUMMARY", "LOCATION:There\nSUMMARY"));
    save(event);
    EXPECT_EQ(event.location, u"There"_qs);
    EXPECT_TRUE(read(u"a.ics"_qs).contains("LOCATION:There\nSUMMARY:Mine\n"));

    const CalendarObject known = backend->objects(u"home/work"_qs).value().at(0);
    QFile::remove(path(u"a.ics"_qs));
    const auto written = backend->put(u"home/work"_qs, known, u"good"_qs);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, CalendarError::Conflict) << "what others removed does not come back";
    EXPECT_FALSE(backend->remove(u"home/work"_qs, known.name, known.etag));
}

TEST_F(FolderFilesTest, AFullDiskLeavesTheFileAsItWas)
{
    write(u"a.ics"_qs, good);
    EKEvent event = events().at(0);
    event.title = u"Mine"_qs;
    {
        const FullDisk disk;
        EXPECT_TRUE(
            CalendarError::is(store.saveEvent(event, EKSpan::ThisEvent, true), CalendarError::Storage));
    }
    EXPECT_EQ(read(u"a.ics"_qs), good);
    EXPECT_EQ(names(), (QStringList{u"a.ics"_qs}));
    EXPECT_EQ(titles(), (QStringList{u"Good"_qs}));
    save(event);
    EXPECT_EQ(titles(), (QStringList{u"Mine"_qs}));
}

TEST_F(FolderFilesTest, ACalendarStaysWhenWhatWasToLeaveItCouldNot)
{
    QDir().mkpath(root + u"/home/target"_qs);
    write(u"a.ics"_qs, good);
    EKEvent event = events().at(0);
    event.calendar = store.calendarWithIdentifier(u"home/target"_qs).value();
    EXPECT_FALSE(store.saveEvent(event, EKSpan::FutureEvents, false));
    EXPECT_FALSE(store.removeCalendar(*store.calendarWithIdentifier(u"home/work"_qs).value(), false));
    {
        const FullDisk disk;
        EXPECT_TRUE(CalendarError::is(store.commit(), CalendarError::Storage));
    }
    EXPECT_EQ(read(u"a.ics"_qs), good);
    EXPECT_EQ(titles(), (QStringList{u"Good"_qs}));
}

TEST_F(FolderFilesTest, ChangesOfOthersAreToldOnceAndOwnOnesNot)
{
    write(u"a.ics"_qs, good);
    int posts = 0;
    const auto observation =
        NotificationCenter::defaultCenter().addObserver(EKEventStoreChangedNotification, [&] { ++posts; });
    EKEventStore::setSharedBackend(backend);
    EKEventStore shared;

    for (int index = 0; index < 20; ++index)
        write(u"new-%1.ics"_qs.arg(index),
              eventText("u" + QByteArray::number(index), "DTSTART:20240304T090000\n"));
    EXPECT_TRUE(waitFor([&] { return posts > 0; }));
    EXPECT_EQ(posts, 1);
    // In place: nobody says so, until one looks.
    write(u"a.ics"_qs, QByteArray(good).replace("Good", "Better"));
    shared.refreshSourcesIfNecessary();
    EXPECT_EQ(posts, 2);
    writeAt(u"fresh/calendar/b.ics"_qs, good);
    EXPECT_TRUE(waitFor([&] { return posts > 2; }));
    writeAt(u"fresh/calendar/c.ics"_qs, good);
    const int before = posts;
    EXPECT_TRUE(waitFor([&] { return posts > before; })) << "folders that came later are watched too";

    const int afterOthers = posts;
    EKEvent event = events().at(0);
    event.title = u"Own"_qs;
    EXPECT_FALSE(shared.saveEvent(event, EKSpan::ThisEvent, true));
    EKCalendar made;
    made.title = u"Own"_qs;
    made.source = shared.sources().value().at(0);
    EXPECT_FALSE(shared.saveCalendar(made, true));
    EXPECT_FALSE(shared.removeEvent(event, EKSpan::ThisEvent, true));
    EXPECT_FALSE(shared.removeCalendar(made, true));
    shared.refreshSourcesIfNecessary();
    QCoreApplication::processEvents();
    EXPECT_EQ(posts, afterOthers);
    EKEventStore::setSharedBackend(nullptr);
}
