// Whatever other programs may put into an event: what a person does to it here changes that and nothing else.

#include "CalendarTest.h"

#include "eventkit/IcalDocument.h"
#include "store/queries/EventDates.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;
using testing::SizeIs;

using Lines = QList<QByteArray>;

class AwkwardObjects : public CalendarTest, public testing::WithParamInterface<std::string>
{
protected:
    AwkwardObjects()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        EXPECT_TRUE(
            QFile::copy(QStringLiteral(MORVANE_OBJECTS "/") + name(), folderOf(u"Home"_qs) + u'/' + name()));
        // It keeps the calendars from being empty all at once, of which the user would be asked.
        write(u"Work"_qs, u"anchor"_qs, u"SUMMARY:Anchor\nDTSTART:20261230T080000Z\nDURATION:PT1H\n"_qs);
        activate();
    }
    static QString name() { return QString::fromStdString(GetParam()) + u".ics"_qs; }
    void activate() { delegate->applicationDidBecomeActive(); }

    /// "2026-11-24 09:00:00 +0100 - 2026-11-24 09:30:00 +0100 Title".
    static constexpr qsizetype lengthOfTimes = 53;
    static QString lineOf(const QString &title, OptionalDate start, Date due)
    {
        return wallClock(start.value_or(due)) + u" - "_qs + wallClock(due) + u' ' + title;
    }
    static std::vector<TaskPtr> openRows()
    {
        std::vector<TaskPtr> open = rows();
        std::erase_if(open, [](const TaskPtr &row) {
            return row->status() == TaskStatus::Done || row->title() == u"Anchor"_qs;
        });
        return open;
    }
    static QString lineOf(const TaskPtr &row)
    {
        return lineOf(row->title(), row->startDate(), *row->dueDate());
    }
    static QStringList shown()
    {
        QStringList lines;
        for (const TaskPtr &row : openRows())
            lines.append(lineOf(row));
        lines.sort();
        return lines;
    }
    /// As another program sees them, which knows of the files alone.
    QStringList held() const
    {
        QStringList lines;
        for (const EKEvent &event : eventsElsewhere()) {
            const auto dates = eventdates::of(event);
            if (event.title != u"Anchor"_qs)
                lines.append(lineOf(event.title, dates->start, dates->due));
        }
        lines.sort();
        return lines;
    }

    /// What stands in a component and those inside of it, without the lines by which a program says that it
    /// has written.
    static Lines linesOf(const IcalComponent &component, const QSet<QByteArray> &without)
    {
        Lines lines;
        for (const ContentLine *line : component.allLines()) {
            if (!without.contains(line->name()))
                lines.append(component.name() + ' ' + line->head() + ':' + line->value());
        }
        for (const IcalComponent *child : component.children())
            lines += linesOf(*child, without);
        return lines;
    }
    std::vector<IcalDocument> documents(const QString &calendar) const
    {
        std::vector<IcalDocument> found;
        const QDir folder(folderOf(calendar));
        for (const QString &file : folder.entryList({u"*.ics"_qs}, QDir::Files)) {
            QFile opened(folder.filePath(file));
            EXPECT_TRUE(opened.open(QIODevice::ReadOnly));
            auto document = IcalDocument::fromText(opened.readAll());
            EXPECT_TRUE(document) << qPrintable(file);
            if (document && file != u"anchor.ics"_qs)
                found.push_back(std::move(document.value()));
        }
        return found;
    }
    static Lines linesOf(const std::vector<IcalDocument> &documents, const QSet<QByteArray> &without)
    {
        Lines lines;
        for (const IcalDocument &document : documents)
            lines += linesOf(document.calendar(), without);
        std::sort(lines.begin(), lines.end());
        return lines;
    }
    static Lines lost(const Lines &before, const Lines &after)
    {
        Lines gone;
        std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                            std::back_inserter(gone));
        return gone;
    }

    /// Does something to the first occurrence and to one in the middle, and takes it back.
    /// \param becomes what its line becomes; nothing if it leaves the calendar.
    /// \param mayLose whether the component that described this occurrence alone may go.
    void expectOnlyThatOne(const std::function<void(const TaskPtr &)> &command,
                           const std::function<QString(QString)> &becomes, bool mayLose)
    {
        const QStringList before = held();
        ASSERT_FALSE(before.isEmpty());
        ASSERT_EQ(shown(), before);
        const auto former = documents(u"Home"_qs);
        for (const qsizetype place : QSet<qsizetype>{0, before.size() / 2}) {
            SCOPED_TRACE(qPrintable(before.at(place)));
            const auto open = openRows();
            const auto row = std::find_if(open.begin(), open.end(), [&](const TaskPtr &one) {
                return lineOf(one) == before.at(place);
            });
            ASSERT_NE(row, open.end());
            command(*row);
            QStringList wanted = before;
            wanted.removeAt(place);
            if (const QString changed = becomes(before.at(place)); !changed.isEmpty())
                wanted.append(changed);
            wanted.sort();
            EXPECT_EQ(held(), wanted);
            EXPECT_EQ(shown(), wanted);
            if (!wanted.isEmpty())
                expectNothingLost(former, mayLose);
            activate();
            EXPECT_EQ(shown(), wanted);
            expectSettled();
            expectTakenBack(before, former);
        }
    }
    void expectNothingLost(const std::vector<IcalDocument> &former, bool mayLose) const
    {
        // One that was deleted or set apart stands in EXDATE, or no longer in RDATE.
        const QSet<QByteArray> changing = {"SUMMARY",  "DTSTAMP", "LAST-MODIFIED",
                                           "SEQUENCE", "EXDATE",  "RDATE"};
        const Lines gone = lost(linesOf(former, changing), linesOf(documents(u"Home"_qs), changing));
        bool isOneComponent = false;
        for (const IcalDocument &document : former) {
            for (const IcalComponent *child : document.calendar().children()) {
                Lines lines = linesOf(*child, changing);
                std::sort(lines.begin(), lines.end());
                isOneComponent |= child->line("RECURRENCE-ID") && lost(gone, lines).isEmpty();
            }
        }
        EXPECT_TRUE(gone.isEmpty() || (mayLose && isOneComponent)) << gone.join('\n').constData();
    }
    void expectTakenBack(const QStringList &before, const std::vector<IcalDocument> &former)
    {
        ASSERT_FALSE(context().undo());
        activate();
        EXPECT_EQ(held(), before) << "taken back";
        EXPECT_EQ(shown(), before) << "taken back";
        const QSet<QByteArray> changing = {"DTSTAMP", "LAST-MODIFIED", "SEQUENCE", "CREATED"};
        EXPECT_THAT(lost(linesOf(former, changing), linesOf(documents(u"Home"_qs), changing)), IsEmpty())
            << "taken back";
        expectSettled();
    }
    static void edit(const TaskPtr &row, Span span, const std::function<void(MVTask &)> &change)
    {
        editSeries(row, span, change);
    }
};

TEST_P(AwkwardObjects, OneIsDeleted)
{
    expectOnlyThatOne(
        [](const TaskPtr &row) {
            const ScriptedAlerts alerts({Alert::firstButton});
            TaskManager::deleteTasks({row}, {});
        },
        [](const QString &) { return QString(); }, true);
}

TEST_P(AwkwardObjects, OneIsTickedOff)
{
    expectOnlyThatOne(
        [](const TaskPtr &row) {
            edit(row, Span::ThisTask, [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
        },
        [](const QString &) { return QString(); }, true);
}

TEST_P(AwkwardObjects, OneGetsAnotherTitle)
{
    expectOnlyThatOne(
        [](const TaskPtr &row) { edit(row, Span::ThisTask, [](MVTask &task) { task.title = u"Other"_qs; }); },
        [](const QString &line) { return line.left(lengthOfTimes) + u" Other"_qs; }, false);
}

TEST_P(AwkwardObjects, AllFromOneOnGetAnotherTitle)
{
    const QStringList before = held();
    const auto former = documents(u"Home"_qs);
    const qsizetype place = before.size() / 2;
    const auto open = openRows();
    const auto row = std::find_if(open.begin(), open.end(),
                                  [&](const TaskPtr &one) { return lineOf(one) == before.at(place); });
    ASSERT_NE(row, open.end());
    edit(*row, Span::FutureTasks, [](MVTask &task) { task.title = u"Other"_qs; });
    QStringList times = held();
    EXPECT_EQ(shown(), times);
    EXPECT_TRUE(times.at(place).endsWith(u"Other"_qs));
    EXPECT_EQ(times.mid(0, place), before.mid(0, place));
    for (qsizetype at = place; at < before.size(); ++at)
        EXPECT_EQ(times.value(at).left(lengthOfTimes), before.at(at).left(lengthOfTimes));
    // Of a divided series each part has its own dates.
    const QSet<QByteArray> changing = {"SUMMARY", "DTSTAMP", "LAST-MODIFIED", "SEQUENCE",
                                       "EXDATE",  "RDATE",   "RRULE",         "EXRULE",
                                       "DTSTART", "DTEND",   "UID",           "RECURRENCE-ID"};
    EXPECT_THAT(lost(linesOf(former, changing), linesOf(documents(u"Home"_qs), changing)), IsEmpty());
    activate();
    expectSettled();
    expectTakenBack(before, former);
}

TEST_P(AwkwardObjects, AllMoveToAnotherCalendar)
{
    const QStringList before = held();
    const auto former = documents(u"Home"_qs);
    // Of a series without a rule, each occurrence moves alone, and is an event of its own there.
    const bool areAlone = before.size() > 1 && openRows().front()->repeat().isEmpty();
    const qsizetype moves = areAlone ? before.size() : 1;
    for (qsizetype move = 0; move < moves; ++move) {
        const auto open = openRows();
        const auto left = std::find_if(
            open.begin(), open.end(), [](const TaskPtr &row) { return row->typeCalendarID() == u"Home"_qs; });
        ASSERT_NE(left, open.end());
        edit(*left, Span::FutureTasks, [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    }
    activate();
    EXPECT_EQ(held(), before);
    EXPECT_EQ(shown(), before);
    EXPECT_THAT(documents(u"Home"_qs), IsEmpty());
    QSet<QByteArray> changing = {"DTSTAMP", "LAST-MODIFIED", "SEQUENCE"};
    if (areAlone)
        changing += {"UID", "RECURRENCE-ID", "RDATE", "DTSTART"};
    EXPECT_THAT(lost(linesOf(former, changing), linesOf(documents(u"Work"_qs), changing)), IsEmpty());
    expectSettled();
    for (qsizetype move = 1; move < moves; ++move)
        ASSERT_FALSE(context().undo());
    expectTakenBack(before, former);
}

TEST_P(AwkwardObjects, OneMovesToAnotherCalendar)
{
    const QStringList before = held();
    const auto former = documents(u"Home"_qs);
    edit(openRows().front(), Span::ThisTask, [](MVTask &task) { task.typeCalendarID = u"Work"_qs; });
    activate();
    EXPECT_EQ(held(), before);
    EXPECT_EQ(shown(), before);
    // There it is an event of its own, and here the series has an exception.
    const QSet<QByteArray> changing = {"DTSTAMP",       "LAST-MODIFIED", "SEQUENCE", "UID",
                                       "RECURRENCE-ID", "EXDATE",        "RDATE",    "RRULE",
                                       "EXRULE",        "DTSTART",       "DTEND",    "DURATION"};
    const auto moved = documents(u"Work"_qs);
    ASSERT_THAT(moved, SizeIs(1));
    Lines present = linesOf(documents(u"Home"_qs), changing) + linesOf(moved, changing);
    std::sort(present.begin(), present.end());
    EXPECT_THAT(lost(linesOf(former, changing), present), IsEmpty());
    const auto components = former.front().calendar().children();
    EXPECT_TRUE(std::any_of(components.begin(), components.end(), [&](const IcalComponent *component) {
        Lines lines = linesOf(*component, changing);
        std::sort(lines.begin(), lines.end());
        return component->name() == "VEVENT" && lost(lines, linesOf(moved, changing)).isEmpty();
    })) << "all that was said of it goes along";
    expectSettled();
    expectTakenBack(before, former);
}

std::vector<std::string> objects()
{
    std::vector<std::string> names;
    for (const QString &name : QDir(QStringLiteral(MORVANE_OBJECTS)).entryList({u"*.ics"_qs}, QDir::Files))
        names.push_back(name.chopped(4).toStdString());
    return names;
}

INSTANTIATE_TEST_SUITE_P(Files, AwkwardObjects, testing::ValuesIn(objects()), [](const auto &one) {
    std::string name = one.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

} // namespace
