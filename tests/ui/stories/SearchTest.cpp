// Records are looked for by words and found from the keyboard and with the mouse.

#include "filters/FilterEntries.h"
#include "filters/SavedFilter.h"
#include "foundation/UserDefaults.h"
#include "records/DetailStack.h"
#include "shell/RightToolBar.h"
#include "shell/search/SearchField.h"
#include "shell/search/SearchPopover.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "store/state/NotificationNames.h"
#include "ui/support/ShellTest.h"
#include "widgets/TextBubble.h"

#include <QLabel>
#include <QScrollBar>

using namespace Qt::Literals::StringLiterals;

class SearchTest : public ShellTest
{
protected:
    RightToolBar &bar() { return *window().rightToolBarMain(); }
    SearchField &field() { return *bar().searchField(); }
    SearchPopover &popover() { return *bar().searchPopover(); }
    TableViewExtended &results() { return *popover().tableView(); }
    QStringList found()
    {
        QStringList lines;
        for (int row = 0; row < results().tableModel()->rowCount(); ++row)
            lines << results().tableModel()->index(row).data().toString();
        return lines;
    }
    QString hint()
    {
        auto *label = popover().findChild<QLabel *>();
        return label->isVisible() ? label->text() : QString();
    }
    void search(const QString &text)
    {
        run(ActionId::Search);
        EXPECT_TRUE(field().hasFocus());
        QTest::keyClicks(&field(), text);
    }
    bool finds(const QStringList &lines)
    {
        return QTest::qWaitFor([&] { return found() == lines; });
    }
    void fieldKey(Qt::Key pressed) { QTest::keyClick(&field(), pressed); }
    SidebarItem shownItem() { return sidebar().itemAt(outline().currentIndex()); }
    TaskPtr shownInPane()
    {
        auto *pane = qobject_cast<TaskDetailViewController *>(controller().detailStack()->top());
        return pane ? pane->taskForm()->currentTask().task() : nullptr;
    }
};

TEST_F(SearchTest, TheKeysLeadFromAWordToATaskInItsList)
{
    const TaskPtr bread = add(u"Buy bread"_s);
    add(u"Bread knife"_s, [](MVTask &task) { task.status = TaskStatus::Done; });
    context().insert<EntityProject>()->setTitle(u"Bread oven"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::Someday);
    search(u"bread"_s);
    ASSERT_TRUE(finds({u"TASK"_s, u"Bread knife"_s, u"Buy bread"_s, u"PROJECT"_s, u"Bread oven"_s}));
    EXPECT_EQ(results().currentRow(), 1);
    fieldKey(Qt::Key_Down);
    EXPECT_EQ(results().currentRow(), 2);
    fieldKey(Qt::Key_Down);
    fieldKey(Qt::Key_Up);
    fieldKey(Qt::Key_Return);
    EXPECT_FALSE(popover().isVisible());
    EXPECT_EQ(shownItem(), SidebarItem::Inbox);
    EXPECT_EQ(selectedTitles(), QStringList{u"Buy bread"_s});
    EXPECT_EQ(shownInPane(), bread);
    EXPECT_FALSE(field().hasFocus());
}

TEST_F(SearchTest, ReturnShowsWhatIsCalledByTheWordRatherThanWhatOnlyMentionsIt)
{
    add(u"Send Ada the draft"_s, [](MVTask &task) { task.details = u"Miss Lovelace, Kraków"_s; });
    const auto ada = context().insert<EntityContacts>();
    ada->setFirstName(u"Ada"_s);
    ada->setLastName(u"Lovelace"_s);
    const auto note = context().insert<EntityNote>();
    note->setTitle(u"Machines"_s);
    note->setDetail(u"of Ada Lovelace in Krakow"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::Someday);
    const QString task = u"Send Ada the draft"_s;
    const QString person = u"Ada Lovelace"_s;
    const std::vector<std::tuple<QString, QStringList, QString>> cases = {
        {u"LOVELÁCE"_s, {task, person, u"Machines"_s}, person},
        {u"ada"_s, {task, person, u"Machines"_s}, task},
        {u"krakow"_s, {task, u"Machines"_s}, task},
        {u"machine"_s, {u"Machines"_s}, u"Machines"_s},
    };
    for (const auto &[word, all, first] : cases) {
        field().clear();
        search(word);
        EXPECT_TRUE(QTest::qWaitFor([&] {
            QStringList records = found();
            records.removeIf([](const QString &line) { return line == line.toUpper(); });
            return records == all;
        })) << qPrintable(found().join(u'|'));
        EXPECT_EQ(results().currentIndex().data().toString(), first) << qPrintable(word);
    }
    field().clear();
    search(u"lovelace"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return found().size() == 6; }));
    fieldKey(Qt::Key_Return);
    EXPECT_EQ(shownItem(), SidebarItem::People);
}

TEST_F(SearchTest, WhatChangesElsewhereIsFoundInTheOpenBubbleAndTheKeysStay)
{
    add(u"Buy bread"_s);
    add(u"Cut bread"_s);
    showList(SidebarItem::Someday);
    search(u"bread"_s);
    ASSERT_TRUE(finds({u"TASK"_s, u"Buy bread"_s, u"Cut bread"_s}));
    fieldKey(Qt::Key_Down);
    add(u"Bake bread"_s);
    ASSERT_TRUE(finds({u"TASK"_s, u"Bake bread"_s, u"Buy bread"_s, u"Cut bread"_s}));
    EXPECT_EQ(results().currentRow(), 3);
    context().deleteObject(stored(u"Cut bread"_s));
    EXPECT_FALSE(DBWorker::saveContext());
    ASSERT_TRUE(finds({u"TASK"_s, u"Bake bread"_s, u"Buy bread"_s}));
    EXPECT_EQ(results().currentRow(), 1);
}

TEST_F(SearchTest, ADoubleClickShowsARecordAndAHeadingDoesNothing)
{
    context().insert<EntityCompany>()->setTitle(u"Bakery"_s);
    context().insert<EntityNote>()->setTitle(u"Baker's dozen"_s);
    add(u"call the baker"_s, [](MVTask &task) { task.dueSomeDay = true; });
    EXPECT_FALSE(DBWorker::saveContext());
    const auto doubleClick = [this](int row) {
        const QPoint place = results().visualRect(results().tableModel()->index(row)).center();
        QWindow *handle = window().windowHandle();
        QTest::mouseDClick(handle, Qt::LeftButton, {}, results().viewport()->mapTo(&window(), place));
    };
    search(u"baker"_s);
    const QStringList lines = {u"TASK"_s,   u"call the baker"_s, u"COMPANY"_s,
                               u"Bakery"_s, u"NOTE"_s,           u"Baker's dozen"_s};
    ASSERT_TRUE(finds(lines));
    doubleClick(0);
    EXPECT_TRUE(popover().isVisible());
    doubleClick(1);
    EXPECT_EQ(shownItem(), SidebarItem::Someday);
    EXPECT_EQ(selectedTitles(), QStringList{u"call the baker"_s});
    QTest::mouseClick(&field(), Qt::LeftButton);
    ASSERT_TRUE(popover().isVisible() && finds(lines));
    doubleClick(3);
    EXPECT_EQ(shownItem(), SidebarItem::Companies);
    QTest::mouseClick(&field(), Qt::LeftButton);
    ASSERT_TRUE(finds(lines));
    doubleClick(5);
    EXPECT_EQ(controller().currentScreen()->accessibleName(), u"Notes"_s) << "they have no row";
}

TEST_F(SearchTest, WhatIsTypedIsCopiedAndPastedByTheCommandsOfTheMenu)
{
    const auto command = [this](ActionId id) {
        QAction &action = *controller().commands()->action(id);
        controller().commands()->update();
        EXPECT_TRUE(action.isEnabled()) << qPrintable(action.text());
        action.trigger();
    };
    showList(SidebarItem::Inbox);
    EXPECT_FALSE(controller().commands()->action(ActionId::Copy)->isEnabled());
    search(u"bread"_s);
    field().selectAll();
    command(ActionId::Cut);
    EXPECT_TRUE(field().text().isEmpty());
    command(ActionId::Paste);
    command(ActionId::Paste);
    EXPECT_EQ(field().text(), u"breadbread"_s);
}

TEST_F(SearchTest, CommandsOfTheMenuLeaveTheListAloneWhileATextHasTheKeys)
{
    const auto command = [this](ActionId id) {
        controller().commands()->update();
        EXPECT_TRUE(controller().commands()->action(id)->isEnabled()) << static_cast<int>(id);
        controller().commands()->action(id)->trigger();
    };
    const ScriptedAlerts alerts;
    addInbox({u"bread"_s, u"butter"_s});
    showList(SidebarItem::Inbox);
    clickRow(0);
    const QStringList selected = selectedTitles();
    search(u"jam"_s);
    command(ActionId::SelectAll);
    EXPECT_EQ(field().selectedText(), u"jam"_s);
    EXPECT_EQ(selectedTitles(), selected);
    command(ActionId::Delete);
    EXPECT_TRUE(field().text().isEmpty());
    command(ActionId::Undo);
    EXPECT_EQ(field().text(), u"jam"_s);
    command(ActionId::Redo);
    EXPECT_TRUE(field().text().isEmpty());
    EXPECT_EQ(inboxTitles().size(), 2) << "nothing of the list was undone";
    EXPECT_TRUE(alerts.asked().empty());
}

TEST_F(SearchTest, TheBubbleSaysWhatItIsForAndThatNothingIsFound)
{
    add(u"apple"_s);
    run(ActionId::Search);
    EXPECT_FALSE(popover().isVisible());
    fieldKey(Qt::Key_Down);
    EXPECT_TRUE(popover().isVisible());
    EXPECT_EQ(hint(), u"Tasks, projects, people, companies and notes"_s);
    EXPECT_LE(popover().height(), 50);
    QTest::keyClicks(&field(), u"pear"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return hint() == u"Nothing found for “pear”"_s; }));
    fieldKey(Qt::Key_Return);
    EXPECT_TRUE(popover().isVisible());
    fieldKey(Qt::Key_Escape);
    EXPECT_FALSE(popover().isVisible());
    EXPECT_TRUE(field().hasFocus());
    showList(SidebarItem::Inbox);
    search(u"apple"_s);
    EXPECT_TRUE(finds({u"TASK"_s, u"apple"_s}));
    EXPECT_TRUE(hint().isEmpty());
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, middleOf(0));
    EXPECT_FALSE(popover().isVisible());
    list().setFocus();
    run(ActionId::Search);
    fieldKey(Qt::Key_Escape);
    EXPECT_TRUE(list().hasFocus());
    EXPECT_TRUE(field().text().isEmpty());
}

TEST_F(SearchTest, TheBubbleIsAsHighAsItsRowsWithinItsLimits)
{
    add(u"apple"_s);
    for (int number = 0; number < 40; ++number)
        add(u"pear %1"_s.arg(number));
    search(u"apple"_s);
    ASSERT_TRUE(finds({u"TASK"_s, u"apple"_s}));
    const QScrollBar &bar = *results().verticalScrollBar();
    EXPECT_GE(popover().height(), 40);
    EXPECT_EQ(bar.maximum(), 0) << "both rows fit";
    field().clear();
    EXPECT_EQ(popover().height(), 40);
    QTest::keyClicks(&field(), u"pear"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return found().size() == 41; }));
    EXPECT_EQ(popover().height(), 466);
    EXPECT_GT(bar.maximum(), 0);
}

TEST_F(SearchTest, TypingDoesNotWaitForTheAnswer)
{
    const QString store = context().storeIdentifier();
    for (int number = 0; number < 20000; ++number) {
        const auto row = context().insert<EntitySearchIndex>();
        row->setString(u"Ünother long text without the one letter that is asked for %1"_s.arg(number));
        row->setObjectId(u"x-morvane://%1/EntityTask/%2"_s.arg(store).arg(number));
    }
    add(u"q"_s);
    run(ActionId::Search);
    for (const char letter : {'x', 'z', 'q'}) {
        QTest::keyClick(&field(), letter);
        EXPECT_TRUE(found().isEmpty());
        fieldKey(Qt::Key_Home);
        QTest::keySequence(&field(), QKeySequence::SelectAll);
    }
    EXPECT_EQ(field().text(), u"q"_s);
    EXPECT_TRUE(finds({u"TASK"_s, u"q"_s}));
}

TEST_F(SearchTest, AFilterMayHideWhatWasFoundAndTheReasonIsTold)
{
    add(u"apple"_s);
    add(u"pear tree"_s);
    QVariantMap entry = filters::pristineTaskEntry();
    QVariantList array = entry.value(u"Array"_s).toList();
    QVariantMap title = array.first().toMap();
    title.insert({{u"Enabled"_s, 1}, {u"Value"_s, u"pear"_s}});
    array[0] = title;
    entry.insert({{u"Array"_s, array}, {u"Enabled"_s, 1}});
    SavedFilter::ofTasks(0).store(entry);
    search(u"apple"_s);
    ASSERT_TRUE(finds({u"TASK"_s, u"apple"_s}));
    fieldKey(Qt::Key_Return);
    EXPECT_EQ(shownItem(), SidebarItem::Inbox);
    EXPECT_TRUE(selectedTitles().isEmpty());
    EXPECT_EQ(shownInPane(), nullptr);
    run(ActionId::WhyIsItHere);
    auto &bubble = find<TextBubble>(screen(), "textBubble");
    EXPECT_EQ(bubble.text(),
              u"“apple” is not on the list “Inbox”: the filter of the list leaves it out by “Title”."_s);
    QTest::keyClick(&bubble, Qt::Key_Escape);
    SavedFilter::ofTasks(0).storePristine();
}

TEST_F(SearchTest, AResultAndASelectedTaskAreExplained)
{
    add(u"idea"_s);
    addInbox({u"plan"_s});
    const auto explained = [this](const QWidget &where) {
        run(ActionId::WhyIsItHere);
        auto &bubble = find<TextBubble>(where, "textBubble");
        const QString text = bubble.text();
        QTest::keyClick(&bubble, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return text;
    };
    const QString here = u"“%1” is on the list “Inbox”: it is a ToDo without a start date and not done."_s;
    clickRow(1);
    EXPECT_EQ(explained(screen()), here.arg(u"plan"_s));
    showList(SidebarItem::Done);
    EXPECT_FALSE(controller().commands()->action(ActionId::WhyIsItHere)->isEnabled());
    search(u"idea"_s);
    ASSERT_TRUE(finds({u"TASK"_s, u"idea"_s}));
    EXPECT_EQ(explained(popover()),
              here.arg(u"idea"_s) + u" It is not on the list “Done”: it is not done."_s);
}
