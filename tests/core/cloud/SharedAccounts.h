#pragma once

#include "ReplicatedCalendars.h"

#include "calendarsync/CalendarStoreState.h"

/// Two computers follow one calendar account, and one of them gives it up.
class SharedAccounts : public ReplicatedCalendars
{
protected:
    SharedAccounts()
    {
        forgetCalendars();
        for (int home : {0, 1}) {
            // Of its own, each has another calendar.
            const QString own = u"Own %1"_qs.arg(home);
            QDir().mkpath(calendars[home].path() + u"/Local/"_qs + own);
            settingsOf[home] = {
                {settings::savedChooseCalendars, u"Home"_qs + calendarstore::separator + own}};
        }
    }

    /// Each computer has settings of its own.
    void goTo(int home)
    {
        leave();
        forgetCalendars();
        for (const auto &[key, value] : settingsOf[home])
            UserDefaults::standard().setObject(key, value);
        present = home;
        turnTo(home);
    }
    void leave()
    {
        if (!present)
            return;
        devices.end();
        settingsOf[*present].clear();
        for (const QString &key : keys()) {
            if (UserDefaults::standard().contains(key))
                settingsOf[*present][key] = UserDefaults::standard().object(key);
        }
        present.reset();
    }
    QString folderOf(int home) const { return calendars[home].path() + u"/Local/Home"_qs; }
    void giveUpAccount(int home)
    {
        EXPECT_TRUE(QDir().rename(folderOf(home), calendars[home].path() + u"/.away"_qs));
    }
    /// The account brings what the other computer has of it meanwhile.
    void setUpAccount(int home)
    {
        EXPECT_TRUE(QDir().rename(calendars[home].path() + u"/.away"_qs, folderOf(home)));
        carryEvents(1 - home, home);
    }
    /// Two appointments on both computers, one with all that only the program knows.
    void fill()
    {
        goTo(0);
        addOnCalendar(u"Dentist"_qs);
        addOnCalendar(u"Optician"_qs);
        const TaskPtr row = find(u"Dentist"_qs);
        row->setPriority(Priority::High);
        categoryTitle = firstCategory();
        row->setCategory(category(categoryTitle));
        const auto project = devices.context().insert<EntityProject>();
        project->setTitle(u"Health"_qs);
        row->setProject(project);
        const auto tag = devices.context().insert<EntityTags>();
        tag->setTitle(u"teeth"_qs);
        row->setTags({tag});
        const auto person = devices.context().insert<EntityContacts>();
        person->setFirstName(u"Ann"_qs);
        row->setDelegateToUser(person);
        save();
        devices.settle();
        carryEvents(0, 1);
        goTo(1);
        goTo(0);
        ASSERT_EQ(state(), whole);
    }
    /// What can be seen of the row of a title: one line for each row.
    QStringList state(const QString &title = u"Dentist"_qs)
    {
        QStringList lines;
        for (const TaskPtr &row : devices.context().fetch<EntityTask>(
                 EntityTask::fetchRequest().where(Predicate::format("title = %@", title)))) {
            QStringList words{row->priority() == Priority::High ? u"high"_qs : u"none"_qs};
            words += row->category() && row->category()->title() == categoryTitle ? u"category"_qs : u"-"_qs;
            words += row->project() ? row->project()->title() : u"-"_qs;
            words += row->tags().size() == 1 ? row->tags().front()->title() : u"-"_qs;
            words += row->delegateToUser() ? row->delegateToUser()->firstName() : u"-"_qs;
            lines.append(words.join(u' '));
        }
        return lines;
    }
    bool isShown(const QString &title)
    {
        bool isFound = false;
        for (const TaskPtr &task : DBWorker::allNotDoneTasks())
            isFound = isFound || task->title() == title;
        return isFound;
    }
    /// Both computers have both rows, with all that the user gave them.
    void expectWhole(const std::vector<int> &homes)
    {
        for (const int home : homes) {
            goTo(home);
            EXPECT_EQ(state(), whole) << home;
            EXPECT_EQ(rows(u"Optician"_qs), 1) << home;
            EXPECT_TRUE(isShown(u"Dentist"_qs)) << home;
        }
    }
    void deleteElsewhere(int home, const QByteArray &title)
    {
        for (const QString &name : events(home)) {
            QFile file(folderOf(home) + u'/' + name);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            if (file.readAll().contains(title))
                file.remove();
        }
    }

    const QStringList whole{u"high category Health teeth Ann"_qs};
    QString categoryTitle;
    std::map<QString, QVariant> settingsOf[2];
    std::optional<int> present;
};
