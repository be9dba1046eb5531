// Categories on their screen: made, named, chosen, deleted, with the tasks of the selected one beside them.

#include "records/Categories.h"
#include "foundation/UserDefaults.h"
#include "records/DetailStack.h"
#include "shell/categories/CategoriesViewController.h"
#include "shell/categories/CategoryTasksCell.h"
#include "shell/tasks/CaptureBar.h"
#include "shell/tasks/CaptureEdit.h"
#include "store/entities/EntityCategory.h"
#include "store/state/SettingsKeys.h"
#include "ui/support/ShellTest.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace {

class CategoriesScreen : public ShellTest
{
protected:
    CategoriesScreen()
    {
        add(u"Mow the lawn"_s, [](MVTask &task) { task.category = EntityCategory::title(u"Personal"_s); });
        add(u"Loose end"_s, [](MVTask &task) { task.category = nullptr; });
        showList(SidebarItem::Categories);
    }

    CategoriesViewController &categories() { return static_cast<CategoriesViewController &>(screen()); }
    TableViewExtended &table() { return *categories().tableViewCategory(); }
    QStringList titles()
    {
        QStringList found;
        for (int row = 0; row < table().model()->rowCount(); ++row)
            found.append(table().model()->index(row, 0).data().toString());
        return found;
    }
    QPoint middle(const QString &title)
    {
        const int row = static_cast<int>(titles().indexOf(title));
        EXPECT_GE(row, 0) << qPrintable(title);
        return table().visualRect(table().model()->index(row, 0)).center();
    }
    void select(const QString &title)
    {
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, middle(title));
    }
    /// The field over a title; null if none is being written.
    QLineEdit *editor()
    {
        const auto fields = table().viewport()->findChildren<QLineEdit *>(u"categoryTitleEditor"_s);
        return !fields.isEmpty() && fields.last()->isVisible() ? fields.last() : nullptr;
    }
    void write(const QString &title, Qt::Key last)
    {
        QTest::keyClicks(editor(), title);
        QTest::keyClick(editor(), last);
        settle();
    }
    void press(QWidget &button) { QTest::mouseClick(&button, Qt::LeftButton, {}, {20, button.height() / 2}); }
    void addCategory(const QString &title)
    {
        press(find<ToolBarButton>(window(), "buttonAdd"));
        ASSERT_NE(editor(), nullptr);
        write(title, Qt::Key_Return);
    }
};

TEST_F(CategoriesScreen, ShowsTheTasksOfTheSelectedOne)
{
    select(u"Personal"_s);
    EXPECT_EQ(shownTitles(), QStringList(u"Mow the lawn"_s));
    EXPECT_EQ(find<QLabel>(categories(), "labelTitleCategory").text(), u"Personal"_s);
    EXPECT_EQ(categories().newTaskRequest().createWithCategory, EntityCategory::title(u"Personal"_s));
    select(u"None"_s);
    EXPECT_EQ(shownTitles(), QStringList(u"Loose end"_s));
    select(u"Work"_s);
    EXPECT_EQ(shownTitles(), QStringList(u"No events"_s));
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, middleOf(0));
    EXPECT_TRUE(controller().detailStack()->isEmpty());

    select(u"Personal"_s);
    add(u"Paint the fence"_s, [](MVTask &task) { task.category = EntityCategory::title(u"Personal"_s); });
    QTRY_COMPARE(shownTitles().size(), 2);
    EXPECT_EQ(find<QLabel>(categories(), "labelTitleCategory").text(), u"Personal"_s);
}

TEST_F(CategoriesScreen, ANewOneIsNamedInPlace)
{
    addCategory(u"Garden"_s);
    const CategoryPtr made = EntityCategory::title(u"Garden"_s);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->index(), 6);
    EXPECT_TRUE(titles().contains(u"Garden"_s));
    EXPECT_EQ(categories().newTaskRequest().createWithCategory, made) << "it is selected";
    const qsizetype count = titles().size();
    addCategory(u"Garden"_s);
    EXPECT_EQ(titles().size(), count) << "there is one of that name";
    addCategory(QString());
    EXPECT_EQ(titles().size(), count);
    press(find<ToolBarButton>(window(), "buttonAdd"));
    write(u"Given up"_s, Qt::Key_Escape);
    EXPECT_FALSE(EntityCategory::title(u"Given up"_s));
    EXPECT_EQ(titles().size(), count);

    while (Categories::canAdd())
        Categories::add(u"Filler %1"_s.arg(titles().size() + Categories::next()->index), *Categories::next());
    categories().reloadData();
    EXPECT_FALSE(find<ToolBarButton>(window(), "buttonAdd").isEnabled());
}

TEST_F(CategoriesScreen, AfterADetailTheKeysAreAmongTheTasks)
{
    addCategory(u"Garden"_s);
    add(u"Dig"_s, [](MVTask &task) { task.category = EntityCategory::title(u"Garden"_s); });
    select(u"Garden"_s);
    QTRY_COMPARE(shownTitles(), QStringList(u"Dig"_s));
    clickRow(0);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, middleOf(0));
    ASSERT_FALSE(controller().detailStack()->isEmpty());
    QTest::keyClick(controller().detailStack()->top(), Qt::Key_Escape);
    ASSERT_TRUE(controller().detailStack()->isEmpty());
    const ScriptedAlerts alerts({Alert::firstButton});
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    EXPECT_EQ(stored(u"Dig"_s), nullptr);
    EXPECT_TRUE(EntityCategory::title(u"Garden"_s));
}

TEST_F(CategoriesScreen, AnotherOneHasNoTaskSelectedYet)
{
    select(u"Personal"_s);
    clickRow(0);
    ASSERT_EQ(selectedTitles(), QStringList(u"Mow the lawn"_s));
    select(u"None"_s);
    EXPECT_EQ(shownTitles(), QStringList(u"Loose end"_s));
    EXPECT_TRUE(selectedTitles().isEmpty());
}

TEST_F(CategoriesScreen, ANewOneThatIsNotShownLeavesTheFormerSelected)
{
    Categories::setShown(Categories::Shown::WithTasks);
    categories().reloadData();
    add(u"Rehearse"_s, [](MVTask &task) { task.category = EntityCategory::title(u"Work"_s); });
    categories().reloadData();
    select(u"Work"_s);
    addCategory(u"Garden"_s);
    EXPECT_TRUE(EntityCategory::title(u"Garden"_s));
    EXPECT_FALSE(titles().contains(u"Garden"_s));
    EXPECT_EQ(find<QLabel>(categories(), "labelTitleCategory").text(), u"Work"_s);
    Categories::setShown(Categories::Shown::All);
}

TEST_F(CategoriesScreen, AnotherOneKeepsTheNameThatWasJustWritten)
{
    press(find<ToolBarButton>(window(), "buttonAdd"));
    QTest::keyClicks(editor(), u"First"_s);
    press(find<ToolBarButton>(window(), "buttonAdd"));
    ASSERT_NE(editor(), nullptr);
    write(u"Second"_s, Qt::Key_Return);
    EXPECT_TRUE(EntityCategory::title(u"First"_s));
    EXPECT_TRUE(EntityCategory::title(u"Second"_s));
    addCategory(u"Firth"_s);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, middle(u"First"_s));
    write(u"Firsts"_s, Qt::Key_Tab);
    EXPECT_TRUE(EntityCategory::title(u"Firsts"_s));
    EXPECT_EQ(find<QLabel>(categories(), "labelTitleCategory").text(), u"Firsts"_s)
        << "the key does not go on to the next title";
}

TEST_F(CategoriesScreen, ADoubleClickNamesAnOwnOneAnew)
{
    addCategory(u"Garden"_s);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, middle(u"Personal"_s));
    EXPECT_EQ(editor(), nullptr) << "a built-in one keeps its name";
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, middle(u"Garden"_s));
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->text(), u"Garden"_s);
    QTest::keyClicks(editor(), u"Allotment"_s);
    // Leaving the field keeps what was written.
    list().setFocus();
    QTRY_VERIFY(EntityCategory::title(u"Allotment"_s) != nullptr);
    EXPECT_FALSE(EntityCategory::title(u"Garden"_s));

    const CategoryPtr allotment = EntityCategory::title(u"Allotment"_s);
    const ScriptedAlerts none;
    for (const QString &taken : {u"Personal"_s, QString()}) {
        QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, middle(u"Allotment"_s));
        ASSERT_NE(editor(), nullptr);
        editor()->selectAll();
        QTest::keyClick(editor(), Qt::Key_Backspace);
        write(taken, Qt::Key_Return);
        EXPECT_EQ(allotment->title(), u"Allotment"_s) << "without a word the old name comes back";
        EXPECT_TRUE(titles().contains(u"Allotment"_s));
    }
    EXPECT_TRUE(none.asked().empty());
}

TEST_F(CategoriesScreen, InTheSampleEveryTaskHasACategoryAndNoCalendarIsChosen)
{
    EXPECT_EQ(titles().last(), u"None"_s);
    EXPECT_TRUE(find<ToolBarButton>(window(), "buttonCalendars").isVisible());
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
    controller().showList(SidebarItem::Inbox);
    EXPECT_FALSE(find<ToolBarButton>(window(), "buttonCalendars").isVisible());
    showList(SidebarItem::Categories);
    EXPECT_FALSE(titles().contains(u"None"_s));
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 0);
}

TEST_F(CategoriesScreen, TheDeleteKeyAsksAndLeavesTheTasksToGeneral)
{
    addCategory(u"Garden"_s);
    add(u"Dig"_s, [](MVTask &task) { task.category = EntityCategory::title(u"Garden"_s); });
    select(u"Personal"_s);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_TRUE(EntityCategory::title(u"Personal"_s));

    ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
    select(u"Garden"_s);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_TRUE(EntityCategory::title(u"Garden"_s)) << "the user thought better of it";
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_FALSE(EntityCategory::title(u"Garden"_s));
    EXPECT_EQ(stored(u"Dig"_s)->category(), EntityCategory::title(u"General"_s));
    EXPECT_EQ(alerts.asked().size(), 2U);
    EXPECT_TRUE(table().hasSelectedRows());
}

TEST_F(CategoriesScreen, TheMenuMakesADefault)
{
    const auto choose = [this](const QString &title) {
        select(title);
        QTest::keyClick(&table(), Qt::Key_F10, Qt::ShiftModifier);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        ASSERT_EQ(menu->actions().front()->text(), u"Set Default"_s);
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    };
    choose(u"Work"_s);
    EXPECT_EQ(EntityCategory::getCustom(), EntityCategory::title(u"Work"_s));
    choose(u"None"_s);
    EXPECT_FALSE(EntityCategory::getCustom());
}

TEST_F(CategoriesScreen, BesideADetailTheTasksKeepTheirRoom)
{
    select(u"Personal"_s);
    auto &panel = find<QWidget>(categories(), "categoryPanel");
    EXPECT_TRUE(panel.isVisible());
    clickRow(0);
    key(Qt::Key_Return);
    EXPECT_FALSE(panel.isVisible());
    EXPECT_GT(list().width(), 250);
    categories().detailStack()->removeAllDetail();
    EXPECT_TRUE(panel.isVisible());
}

TEST_F(CategoriesScreen, ATaskThatIsTypedAboveTheTasksOfACategoryBelongsToIt)
{
    select(u"Work"_s);
    run(ActionId::AddInLine);
    QLineEdit *const line = categories().captureBar()->edit();
    ASSERT_TRUE(line->hasFocus());
    QTest::keyClicks(line, u"Water plants tomorrow"_s);
    QTest::keyClick(line, Qt::Key_Return);
    settle();
    EXPECT_TRUE(shownTitles().contains(u"Water plants"_s));
    EXPECT_EQ(stored(u"Water plants"_s)->category(), EntityCategory::title(u"Work"_s));
    QTest::keyClicks(line, u"File papers #Personal"_s);
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(stored(u"File papers"_s)->category(), EntityCategory::title(u"Personal"_s))
        << "what is typed wins";
}

TEST_F(CategoriesScreen, AHalfTypedTitleIsKeptWhenTheScreenIsLeftAndWhenTheProgramQuits)
{
    press(find<ToolBarButton>(window(), "buttonAdd"));
    QTest::keyClicks(editor(), u"Garden"_s);
    pressSidebar(SidebarItem::Today);
    showList(SidebarItem::Categories);
    EXPECT_TRUE(titles().contains(u"Garden"_s));
    press(find<ToolBarButton>(window(), "buttonAdd"));
    QTest::keyClicks(editor(), u"Orchard"_s);
    EXPECT_EQ(delegate->applicationShouldTerminate(AppDelegate::QuitWish::OfSystem),
              AppDelegate::TerminateReply::Now);
    EXPECT_TRUE(titles().contains(u"Orchard"_s));
}

} // namespace
