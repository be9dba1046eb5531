#include "CalendarTest.h"
#include "records/dates/MTDates.h"
#include "store/queries/EventDates.h"

#include <gmock/gmock.h>

#include <QRegularExpression>

#include <random>

namespace {

/// Edits on both sides in any order: once a pass has settled, both sides say the same and nothing is lost.
class GeneratedEdits : public CalendarTest
{
protected:
    GeneratedEdits() { UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2); }

    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random); }
    QString newTitle() { return u"Title %1"_qs.arg(++lastTitle); }
    QString anyCalendar() { return upTo(1) ? u"Home"_qs : u"Work"_qs; }
    void note(const QString &step) { steps.append(step); }

    // Elsewhere.
    void makeElsewhere()
    {
        const QString uid = u"other%1"_qs.arg(++lastTitle);
        const QString day = QString::number(20261123 + upTo(4));
        const QStringList times = {
            u"DTSTART;VALUE=DATE:%1\n"_qs, u"DTSTART;TZID=America/New_York:%1T090000\nDURATION:PT45M\n"_qs,
            u"DTSTART;TZID=Europe/Berlin:%1T220000\nDURATION:PT4H\n"_qs,
            u"DTSTART:%1T100000Z\nDTEND:%1T100000Z\n"_qs, u"DTSTART:%1T070000\nDTEND:%1T071500\n"_qs};
        const int times4 = upTo(3) == 0 ? 4 : 1;
        const QString rule = times4 > 1 ? u"RRULE:FREQ=DAILY;COUNT=4\n"_qs : QString();
        write(anyCalendar(), uid,
              u"SUMMARY:%1\n"_qs.arg(newTitle()) + times.at(upTo(4)).arg(day) + rule +
                  u"X-KEEP;P=\"a;b\":%1\n"_qs.arg(uid));
        kept.insert(uid);
        occurrences += times4;
        note(u"made elsewhere "_qs + uid);
    }
    void changeElsewhere(const std::function<void(const QString &path, QString text)> &change)
    {
        const QString calendar = anyCalendar();
        auto present = files(calendar);
        present.remove(u"anchor.ics"_qs);
        if (present.isEmpty())
            return;
        const QString name = present.keys().at(upTo(int(present.size()) - 1));
        note(u"  of "_qs + name);
        change(folderOf(calendar) + u'/' + name, present.value(name));
    }
    void renameElsewhere()
    {
        changeElsewhere([this](const QString &path, QString text) {
            static const QRegularExpression summary(u"SUMMARY:[^\r]*"_qs);
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(text.replace(summary, u"SUMMARY:"_qs + newTitle()).toUtf8());
        });
    }
    void moveElsewhere()
    {
        changeElsewhere([this](const QString &path, const QString &text) {
            const QString target = folderOf(path.contains(u"/Home/"_qs) ? u"Work"_qs : u"Home"_qs);
            QFile file(target + path.mid(path.lastIndexOf(u'/')));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(text.toUtf8());
            QFile::remove(path);
        });
    }
    void removeElsewhere()
    {
        changeElsewhere([this](const QString &path, const QString &text) {
            static const QRegularExpression uid(u"\r\nUID:([^\r]*)"_qs);
            const QString identifier = uid.match(text).captured(1);
            const QString origin = originOf(identifier);
            int ofOrigin = 0;
            int removed = 0;
            for (const EKEvent &event : calendarEvents()) {
                removed += event.calendarItemExternalIdentifier == identifier;
                ofOrigin += originOf(event.calendarItemExternalIdentifier) == origin;
            }
            occurrences -= removed;
            if (removed == ofOrigin)
                kept.remove(origin);
            QFile::remove(path);
        });
    }

    // Here.
    TaskPtr anyRow()
    {
        std::vector<TaskPtr> all = rows();
        std::erase_if(all, [](const TaskPtr &row) {
            return row->status() == TaskStatus::Done || row->calendarID() == u"anchor"_qs;
        });
        return all.empty() ? nullptr : all.at(size_t(upTo(int(all.size()) - 1)));
    }
    void makeHere()
    {
        MVTask task;
        task.title = newTitle();
        task.type = static_cast<TaskType>(upTo(2));
        task.status = TaskStatus::Open;
        const Date day = localDate(2026, 11, 23 + upTo(4));
        if (task.type == TaskType::ToDo) {
            task.startDate = day;
            task.dueDate = day + Seconds(86400.0 * upTo(2) + 86340);
        } else {
            task.dueDate = day + Seconds(15 * 3600 + 900.0 * upTo(4));
            if (task.type == TaskType::Appointment)
                task.startDate = day + Seconds(14 * 3600);
        }
        task.typeCalendarID = anyCalendar();
        ASSERT_TRUE(TaskManager::saveTaskTemp(task, true));
        ++occurrences;
        note(u"made here "_qs + task.title);
    }
    void editHere(const std::function<void(MVTask &)> &edit)
    {
        const TaskPtr row = anyRow();
        if (!row)
            return;
        const Span span = upTo(1) ? Span::ThisTask : Span::FutureTasks;
        note(u"  of %1, %2"_qs.arg(row->title(),
                                   span == Span::ThisTask ? u"alone"_qs : u"with later ones"_qs));
        if (!row->repeat().isEmpty()) {
            editSeries(row, span, edit);
            // Where occurrences were moved past each other, rows before this one can be of later ones.
            if (span == Span::FutureTasks)
                pass();
            return;
        }
        MVTask copy(row);
        edit(copy);
        ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
    }
    void removeHere(bool asDone)
    {
        const TaskPtr row = anyRow();
        if (!row)
            return;
        note(u"  of "_qs + row->title());
        const bool isSeries = !row->repeat().isEmpty();
        --occurrences;
        forgetLastOf(originOf(row->calendarID()));
        if (asDone && isSeries) {
            ++doneRows;
            editSeries(row, Span::ThisTask,
                       [](MVTask &task) { task.changeStatusType(TaskStatus::Done, false); });
        } else if (asDone) {
            ++doneRows;
            MVTask copy(row);
            copy.changeStatusType(TaskStatus::Done, true);
        } else {
            const ScriptedAlerts alerts({Alert::firstButton});
            TaskManager::deleteTasks({row}, {});
        }
    }
    /// Which event made elsewhere one stems from; a divided series has several identifiers.
    QString originOf(const QString &uid) const
    {
        static const QRegularExpression keep(u"X-KEEP[^:]*:([^\r]*)"_qs);
        for (const QString &text : files(u"Home"_qs).values() + files(u"Work"_qs).values()) {
            if (text.contains(u"\r\nUID:%1\r\n"_qs.arg(uid)))
                return keep.match(text).captured(1);
        }
        return {};
    }
    void forgetLastOf(const QString &origin)
    {
        const auto events = calendarEvents();
        const auto count = std::count_if(events.begin(), events.end(), [&](const EKEvent &event) {
            return originOf(event.calendarItemExternalIdentifier) == origin;
        });
        if (count == 1)
            kept.remove(origin);
    }

    static std::vector<EKEvent> calendarEvents()
    {
        return CalendarEvent::eventsForCalendars(CalendarEvent::getAllCalendars()).value();
    }
    void step()
    {
        const int kind = upTo(9);
        const bool isElsewhere = kind < 5;
        if (!isElsewhere && wasElsewhere)
            pass();
        wasElsewhere = isElsewhere;
        note(QString::number(kind));
        switch (kind) {
        case 0:
        case 1:
            return makeElsewhere();
        case 2:
            return renameElsewhere();
        case 3:
            return moveElsewhere();
        case 4:
            return removeElsewhere();
        case 5:
            return makeHere();
        case 6:
            return editHere([this](MVTask &task) { task.title = newTitle(); });
        case 7:
            return editHere([](MVTask &task) {
                constexpr Seconds later{86400};
                if (task.startDate)
                    task.startDate = *task.startDate + later;
                task.dueDate = *task.dueDate + later;
            });
        case 8:
            return removeHere(false);
        default:
            return removeHere(true);
        }
    }
    void expectAgreement()
    {
        QStringList shown;
        QStringList held;
        int done = 0;
        for (const TaskPtr &row : rows()) {
            if (row->status() == TaskStatus::Done)
                ++done;
            else
                shown.append(lineOf(row->title(), row->type().value_or(TaskType::ToDo), row->startDate(),
                                    *row->dueDate()));
        }
        for (const EKEvent &event : calendarEvents()) {
            const auto dates = eventdates::of(event);
            held.append(lineOf(event.title, dates->type, dates->start, dates->due));
        }
        shown.sort();
        held.sort();
        EXPECT_EQ(shown, held);
        EXPECT_EQ(held.size(), occurrences);
        EXPECT_EQ(done, doneRows);
        const QString texts =
            files(u"Home"_qs).values().join(QString()) + files(u"Work"_qs).values().join(QString());
        for (const QString &uid : kept)
            EXPECT_TRUE(texts.contains(u"X-KEEP;P=\"a;b\":%1\r\n"_qs.arg(uid))) << uid.toStdString();
    }
    static QString lineOf(const QString &title, TaskType type, OptionalDate start, Date due)
    {
        return u"%1 (%2) %3 %4"_qs.arg(title).arg(int(type)).arg(start ? wallClock(*start) : u"-"_qs,
                                                                 wallClock(due));
    }

    std::mt19937 random;
    int lastTitle = 0;
    qsizetype occurrences = 0;
    int doneRows = 0;
    bool wasElsewhere = false;
    QSet<QString> kept;
    QStringList steps;
};

TEST_F(GeneratedEdits, EndInAgreement)
{
    constexpr int sequences = 12;
    constexpr int stepsOfEach = 16;
    for (int sequence = 0; sequence < sequences && !HasFailure(); ++sequence) {
        SCOPED_TRACE(sequence);
        startAnew();
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        UserDefaults::standard().removeObject(settings::eventsAtLastPass);
        for (const QString &calendar : {u"Home"_qs, u"Work"_qs}) {
            for (const QString &name : files(calendar).keys())
                QFile::remove(folderOf(calendar) + u'/' + name);
        }
        connectStore();
        random.seed(testSeed() + unsigned(sequence));
        occurrences = doneRows = 0;
        kept.clear();
        steps.clear();
        // It keeps the calendars from being empty all at once, of which the user would be asked.
        write(u"Home"_qs, u"anchor"_qs, u"SUMMARY:Anchor\nDTSTART:20261230T080000Z\nDURATION:PT1H\n"_qs);
        occurrences = 1;
        for (int number = 0; number < stepsOfEach && !HasFailure(); ++number) {
            step();
            ASSERT_EQ(qsizetype(calendarEvents().size()), occurrences) << steps.join(u'\n').toStdString();
        }
        pass();
        expectSettled();
        expectAgreement();
        if (HasFailure())
            ADD_FAILURE() << steps.join(u'\n').toStdString();
    }
}

TEST_F(GeneratedEdits, TasksComeBackAsTheyWere)
{
    random.seed(testSeed());
    const QString letters = u"aZ 09,;:\\\"'()<>&\n\täöß€日本🎉\u0301"_qs;
    const auto text = [&](int most) {
        QString made = u"x"_qs;
        for (int place = upTo(most); place > 0; --place)
            made += letters.at(upTo(int(letters.size()) - 1));
        return QString::fromUtf8(made.toUtf8()).remove(QChar::ReplacementCharacter) + u'x';
    };
    struct Sent
    {
        QString title, details;
        TaskType type;
        OptionalDate start, due, alert;
    };
    std::vector<Sent> sent;
    for (int number = 0; number < 60; ++number) {
        MVTask task;
        task.title = text(90).simplified() + QString::number(number);
        task.details = text(200);
        task.type = static_cast<TaskType>(upTo(2));
        task.status = TaskStatus::Open;
        const Date start = localDate(2026, 10, 24 + upTo(100), upTo(22), 15 * upTo(3));
        const bool isDay = task.type == TaskType::ToDo;
        if (task.type != TaskType::EmailCall)
            task.startDate = isDay ? MTDates::startOfCurrentDay(start) : start;
        task.dueDate =
            isDay ? MTDates::endOfCurrentDay(start + Seconds(86400.0 * upTo(9))) : start + Seconds(1800);
        if (task.type == TaskType::Appointment && upTo(1))
            task.alert = start + Seconds(-60.0 * upTo(3000));
        task.typeCalendarID = anyCalendar();
        ASSERT_TRUE(TaskManager::saveTaskTemp(task, true));
        sent.push_back({task.title, task.details, *task.type, task.startDate, task.dueDate, task.alert});
    }
    startAnew();
    connectStore();
    pass();
    const auto found = rows();
    ASSERT_EQ(found.size(), sent.size());
    for (const Sent &one : sent) {
        const auto row = std::find_if(found.begin(), found.end(),
                                      [&one](const TaskPtr &each) { return each->title() == one.title; });
        ASSERT_NE(row, found.end()) << one.title.toStdString();
        EXPECT_EQ((*row)->details(), one.details);
        EXPECT_EQ((*row)->type(), one.type);
        EXPECT_EQ((*row)->startDate(), one.start);
        EXPECT_LT(std::abs((*(*row)->dueDate() - *one.due).count()), 60) << one.title.toStdString();
        EXPECT_EQ((*row)->alert(), one.alert);
    }
    expectSettled();
}

} // namespace
