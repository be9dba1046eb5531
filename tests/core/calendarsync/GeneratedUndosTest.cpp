// Generated commands, undos, redos, passes and edits of another program, both sides compared.

#include "UndoStories.h"

#include <random>

namespace {

TEST_F(UndoStories, GeneratedOnesAlwaysComeBackToWhereTheyWere)
{
    constexpr int sequences = 10;
    constexpr int stepsOfEach = 24;
    for (int sequence = 0; sequence < sequences && !HasFailure(); ++sequence) {
        SCOPED_TRACE(sequence);
        std::mt19937 random(testSeed() + unsigned(sequence));
        const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
        startAnew();
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        UserDefaults::standard().removeObject(settings::eventsAtLastPass);
        for (const QString &name : files(u"Home"_qs).keys())
            QFile::remove(folderOf(u"Home"_qs) + u'/' + name);
        connectStore();
        write(u"Work"_qs, u"anchor"_qs, u"SUMMARY:Anchor\nDTSTART:20261230T080000Z\nDURATION:PT1H\n"_qs);
        writeSeries();
        QStringList steps;
        int titles = 0;
        /// Both sides after each step that can be undone; what is before `place` is done.
        std::vector<QStringList> history = {shown() + held()};
        size_t place = 0;
        const auto anyRow = [&]() -> TaskPtr {
            std::vector<TaskPtr> all = rows();
            std::erase_if(all, [](const TaskPtr &row) {
                return row->status() == TaskStatus::Done || row->title() == u"Anchor"_qs;
            });
            return all.empty() ? nullptr : all[size_t(upTo(int(all.size()) - 1))];
        };
        const auto command = [&](const TaskPtr &row) {
            const int kind = row ? upTo(4) : 0;
            const int button = upTo(1) ? Alert::firstButton : Alert::secondButton;
            const ScriptedAlerts alerts({row && !row->repeat().isEmpty() ? button : Alert::firstButton});
            steps.append(u"%1 of %2 with %3"_qs.arg(kind).arg(row ? row->title() : QString()).arg(button));
            if (kind == 0) {
                make(u"Task %1"_qs.arg(++titles), 23 + upTo(5));
            } else if (kind == 1) {
                edit(row, [&](MVTask &task) { task.title = u"Title %1"_qs.arg(++titles); });
            } else if (kind == 2) {
                edit(row, [](MVTask &task) {
                    task.startDate = *task.startDate + Seconds(3600);
                    task.dueDate = *task.dueDate + Seconds(3600);
                });
            } else if (kind == 3) {
                tickOff(row);
            } else {
                TaskManager::deleteTasks({row}, {});
            }
        };
        for (int number = 0; number < stepsOfEach && !HasFailure(); ++number) {
            const int kind = upTo(7);
            if (kind < 3) {
                command(anyRow());
                activate();
                history.resize(place + 1);
                history.push_back(shown() + held());
                ++place;
            } else if (kind < 5 && place > 0) {
                steps.append(u"undo"_qs);
                undo();
                --place;
            } else if (kind == 5 && place + 1 < history.size()) {
                steps.append(u"redo"_qs);
                redo();
                ++place;
            } else if (kind == 6) {
                steps.append(u"restart"_qs);
                restart();
            } else {
                // Another program works on something else.
                write(u"Work"_qs, u"anchor"_qs,
                      u"SUMMARY:Anchor\nDESCRIPTION:%1\nDTSTART:20261230T080000Z\nDURATION:PT1H\n"_qs.arg(
                          number));
            }
            // A pass follows what events an undo or a redo took back.
            goOn();
            if (upTo(1))
                activate();
            ASSERT_EQ(shown() + held(), history[place]) << steps.join(u'\n').toStdString();
        }
        activate();
        ASSERT_EQ(shown() + held(), history[place]) << steps.join(u'\n').toStdString();
        while (place > 0) {
            undo();
            --place;
        }
        activate();
        EXPECT_EQ(shown() + held(), history.front()) << steps.join(u'\n').toStdString();
        expectSettled();
    }
}

TEST_F(UndoStories, GeneratedOnesLeaveNothingTwiceWhereAnotherProgramEditsTheSameEvents)
{
    constexpr int sequences = 12;
    constexpr int stepsOfEach = 20;
    for (int sequence = 0; sequence < sequences && !HasFailure(); ++sequence) {
        SCOPED_TRACE(sequence);
        std::mt19937 random(testSeed() + 1000 + unsigned(sequence));
        const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
        startAnew();
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        UserDefaults::standard().removeObject(settings::eventsAtLastPass);
        for (const QString &calendar : {u"Home"_qs, u"Work"_qs}) {
            for (const QString &name : files(calendar).keys())
                QFile::remove(folderOf(calendar) + u'/' + name);
        }
        connectStore();
        writeSeries();
        for (int number = 0; number < 3; ++number) {
            MVTask task = draft(u"Task"_qs, 24);
            task.startDate = localDate(2026, 11, 24, 12 + number);
            task.dueDate = localDate(2026, 11, 24, 13 + number);
            make(task);
        }
        QStringList steps;
        const auto command = [&] {
            const std::vector<TaskPtr> all = rows();
            const TaskPtr &row = all[size_t(upTo(int(all.size()) - 1))];
            const int kind = upTo(2);
            const int button = upTo(1) ? Alert::firstButton : Alert::secondButton;
            const ScriptedAlerts alerts({row->repeat().isEmpty() ? Alert::firstButton : button});
            steps.append(u"%1 of %2 %3 with %4"_qs.arg(kind)
                             .arg(row->title(), wallClock(*row->dueDate()))
                             .arg(button));
            if (kind == 0)
                edit(row, [&](MVTask &task) { task.title = u"Title %1"_qs.arg(steps.size()); });
            else if (kind == 1)
                edit(row, [](MVTask &task) {
                    task.typeCalendarID = task.typeCalendarID == u"Home"_qs ? u"Work"_qs : u"Home"_qs;
                });
            else if (all.size() > 4)
                TaskManager::deleteTasks({row}, {});
        };
        const auto foreignEdit = [&] {
            const QString calendar = upTo(1) ? u"Home"_qs : u"Work"_qs;
            const auto texts = files(calendar);
            if (texts.isEmpty())
                return;
            const QString name = texts.keys().at(upTo(int(texts.size()) - 1));
            QString text = texts.value(name);
            text.replace(text.lastIndexOf(u"END:VEVENT"_qs), 0, u"X-NOTE-%1:theirs\r\n"_qs.arg(steps.size()));
            static const QRegularExpression title(u"SUMMARY:[^\r]*"_qs);
            if (upTo(1))
                text.replace(title, u"SUMMARY:Theirs %1"_qs.arg(steps.size()));
            steps.append(u"they edit "_qs + calendar + u'/' + name);
            QFile file(folderOf(calendar) + u'/' + name);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(text.toUtf8());
        };
        for (int number = 0; number < stepsOfEach && !HasFailure(); ++number) {
            const int kind = upTo(5);
            if (kind < 2) {
                command();
            } else if (kind == 2) {
                foreignEdit();
            } else if (kind < 5 && context().canUndo()) {
                steps.append(u"undo"_qs);
                undo();
            } else if (context().canRedo()) {
                steps.append(u"redo"_qs);
                redo();
            }
            if (upTo(1))
                continue;
            activate();
            const std::string story = steps.join(u'\n').toStdString();
            ASSERT_EQ(shown(), held()) << story;
            QStringList hours;
            for (const TaskPtr &row : rows())
                hours.append(wallClock(*row->startDate()));
            ASSERT_EQ(hours.removeDuplicates(), 0) << hours.join(u' ').toStdString() << '\n' << story;
        }
        activate();
        expectSettled();
    }
}

} // namespace
