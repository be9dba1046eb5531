// What assistive technology finds and hears: rows, ticks, bubbles, days, lists of choices.

#include "ui/support/Reader.h"
#include "filters/FilterButton.h"
#include "filters/MVPopUp.h"
#include "records/DetailStack.h"
#include "records/Functional.h"
#include "shell/RightToolBar.h"
#include "shell/maps/MapView.h"
#include "shell/search/SearchField.h"
#include "shell/search/SearchPopover.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "ui/support/CalendarAccess.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"
#include "widgets/DatePicker.h"
#include "widgets/MVSegmentView.h"
#include "widgets/MonthGrid.h"
#include "widgets/RowItemView.h"

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QMenu>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString toggle = QAccessibleActionInterface::toggleAction();
const QString setFocus = QAccessibleActionInterface::setFocusAction();

class ReaderTest : public ShellTest
{
protected:
    ReaderTest() { addInbox({u"Tea"_s, u"Bread"_s, u"Milk"_s}); }
    ~ReaderTest() override
    {
        if (QWidget *popup = QApplication::activePopupWidget())
            popup->close();
    }
    QAccessibleInterface *row(const QString &name)
    {
        QAccessibleInterface *found = Reader::find(list(), QAccessible::CheckBox, name);
        EXPECT_NE(found, nullptr) << qPrintable(name);
        return found;
    }

    Reader reader;
};

} // namespace

TEST_F(ReaderTest, ARowIsACheckBoxWithItsPlaceItsStateAndWhatCanBeDone)
{
    QAccessibleInterface &rows = Reader::of(list());
    EXPECT_EQ(rows.role(), QAccessible::List);
    EXPECT_EQ(rows.text(QAccessible::Name), u"Inbox"_s);
    EXPECT_EQ(rows.text(QAccessible::Description), u"3 tasks"_s);
    EXPECT_EQ(Reader::namesIn(list()), (QStringList{u"Tea"_s, u"Bread"_s, u"Milk"_s}));
    clickRow(1);
    QAccessibleInterface &bread = *row(u"Bread"_s);
    EXPECT_EQ(rows.indexOfChild(&bread), 1);
    EXPECT_EQ(rows.focusChild(), &bread);
    EXPECT_EQ(bread.parent(), &rows);
    EXPECT_EQ(bread.window(), window().windowHandle());
    EXPECT_EQ(rows.childAt(bread.rect().center().x(), bread.rect().center().y()), &bread);
    EXPECT_TRUE(bread.state().selected && bread.state().focused && bread.state().checkable);
    EXPECT_FALSE(bread.state().checked || bread.state().offscreen || row(u"Tea"_s)->state().focused);
    EXPECT_EQ(bread.actionInterface()->keyBindingsForAction(toggle), QStringList{u"Space"_s});
    // The walk of the whole tree is that of the screen's own list, too.
    EXPECT_EQ(Reader::find(window(), QAccessible::CheckBox, u"Bread"_s), &bread);
}

TEST_F(ReaderTest, TheKeysTellWhereTheyAreAndWhatTheyDid)
{
    clickRow(0);
    reader.heard();
    key(Qt::Key_Down);
    EXPECT_EQ(reader.heard(), (QStringList{u"focus: Bread"_s, u"deselected: Tea"_s, u"selected: Bread"_s}));
    key(Qt::Key_Space);
    EXPECT_EQ(reader.heard(), QStringList{u"ticked: Bread"_s});
    key(Qt::Key_Space);
    EXPECT_EQ(reader.heard(), QStringList{u"unticked: Bread"_s});
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(reader.heard(), QStringList{u"said: 3 of 3"_s});
    outline().setFocus();
    reader.heard();
    list().setFocus();
    EXPECT_EQ(reader.heard().last(), u"focus: Bread"_s) << "the row comes after the list";
}

TEST_F(ReaderTest, WhatIsTickedLeavesAndWhatIsNewComes)
{
    clickRow(0);
    QAccessibleInterface &bread = *row(u"Bread"_s);
    QAccessibleInterface &milk = *row(u"Milk"_s);
    Reader::act(&bread, toggle);
    EXPECT_TRUE(reader.hears(u"went: "_s));
    EXPECT_TRUE(stored(u"Bread"_s)->status() == TaskStatus::Done);
    EXPECT_EQ(Reader::namesIn(list()), (QStringList{u"Tea"_s, u"Milk"_s}));
    EXPECT_EQ(row(u"Milk"_s), &milk) << "it is the same row, at another place";
    reader.heard();
    add(u"Salt"_s);
    EXPECT_TRUE(reader.hears(u"came: Salt"_s));
    stored(u"Milk"_s)->setTitle(u"Oat milk"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_TRUE(reader.hears(u"named: Oat milk"_s));
    EXPECT_EQ(milk.text(QAccessible::Name), u"Oat milk"_s);
}

TEST_F(ReaderTest, ARowOutOfSightThatIsReadTellsOfItsChange)
{
    for (int number = 0; number < 60; ++number)
        add(u"Task %1"_s.arg(number));
    settle();
    QAccessibleInterface &tea = *row(u"Tea"_s);
    clickRow(0);
    list().scrollToBottom();
    EXPECT_TRUE(tea.state().offscreen);
    reader.heard();
    const auto rename = [this](const QString &former, const QString &title) {
        stored(former)->setTitle(title);
        ASSERT_FALSE(DBWorker::saveContext());
    };
    rename(u"Tea"_s, u"Green tea"_s);
    EXPECT_TRUE(reader.hears(u"named: Green tea"_s)) << "the keys are on it";
    key(Qt::Key_End);
    reader.heard();
    rename(u"Green tea"_s, u"Black tea"_s);
    EXPECT_TRUE(reader.hears(u"named: Black tea"_s)) << "who reads may stand anywhere";
}

TEST_F(ReaderTest, WhatCannotBeDoneAnyMoreIsNotDone)
{
    row(u"Tea"_s)->actionInterface()->doAction(toggle);
    list().setEnabled(false);
    settle();
    EXPECT_EQ(stored(u"Tea"_s)->status(), TaskStatus::Open);
    list().setEnabled(true);
}

TEST_F(ReaderTest, ManyChangesAreOneSentence)
{
    clickRow(0);
    reader.heard();
    for (int number = 0; number < 9; ++number)
        add(u"Task %1"_s.arg(number));
    EXPECT_TRUE(reader.hears(u"said: 12 tasks"_s));
    reader.heard();
    list().selectAll();
    EXPECT_EQ(reader.heard().last(), u"said: 12 selected"_s);
    showList(SidebarItem::Someday);
    EXPECT_TRUE(reader.hears(u"said: No Tasks"_s));
    showList(SidebarItem::Inbox);
    EXPECT_TRUE(reader.hears(u"said: 12 tasks"_s));
    clickRow(2);
    Reader::find(list(), QAccessible::CheckBox, u"Milk"_s);
    reader.heard();
    screen().reloadData();
    EXPECT_EQ(reader.heard(), QStringList()) << "nobody wants to hear what stays";
}

TEST_F(ReaderTest, ARowIsOpenedMovedAndAskedForItsMenu)
{
    Reader::act(row(u"Milk"_s), u"Move up"_s);
    EXPECT_EQ(inboxTitles(), (QStringList{u"Tea"_s, u"Milk"_s, u"Bread"_s}));
    Reader::act(row(u"Bread"_s), QAccessibleActionInterface::showMenuAction());
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_NE(Reader::find(window(), QAccessible::MenuItem, u"Why Is It Here?"_s), nullptr)
        << "the menu is found from its window";
    menu->close();
    EXPECT_EQ(selectedTitles(), QStringList{u"Bread"_s});
    Reader::act(row(u"Tea"_s), setFocus);
    EXPECT_TRUE(row(u"Tea"_s)->state().focused);
    Reader::press(row(u"Bread"_s));
    ASSERT_NE(controller().detailStack()->top(), nullptr);
    EXPECT_EQ(controller().detailStack()->top()->record(), stored(u"Bread"_s));
    // Who presses a button is answered before what it does may ask a question.
    QAccessibleInterface *back = Reader::find(window(), QAccessible::Button, u"Back"_s);
    ASSERT_NE(back, nullptr);
    back->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_NE(controller().detailStack()->top(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !controller().detailStack()->top(); }));
}

TEST_F(ReaderTest, UnderHeadersARowSaysWhichItIs)
{
    for (const Priority priority : {Priority::High, Priority::Low})
        add(u"Due %1"_s.arg(static_cast<int>(priority)), [&](MVTask &task) {
            task.startDate = localDate(2026, 11, 21);
            task.dueDate = localDate(2026, 11, 21, 23, 59);
            task.priority = priority;
        });
    showList(SidebarItem::Today);
    Reader::press(Reader::find(window(), QAccessible::RadioButton, u"Priority"_s));
    ASSERT_NE(Reader::find(list(), QAccessible::Heading, u"Low"_s), nullptr);
    EXPECT_EQ(row(u"Due 2"_s)->text(QAccessible::Description), u"Low, 2 of 2"_s);
    EXPECT_EQ(row(u"Due 2"_s)->text(QAccessible::Name), u"Due 2, Due Today, Low priority"_s);
}

TEST_F(ReaderTest, TheSidebarOpensClosesAndSaysItsNumbers)
{
    QAccessibleInterface *tasks = Reader::find(outline(), QAccessible::ListItem, u"Tasks"_s);
    ASSERT_NE(tasks, nullptr);
    EXPECT_TRUE(tasks->state().expandable && tasks->state().expanded);
    Reader::press(tasks);
    EXPECT_TRUE(reader.heard().contains(u"closed: Tasks"_s));
    EXPECT_EQ(Reader::find(outline(), QAccessible::ListItem, u"Inbox"_s), nullptr);
    Reader::press(tasks);
    EXPECT_TRUE(reader.heard().contains(u"opened: Tasks"_s));
    QAccessibleInterface *inbox = Reader::find(outline(), QAccessible::ListItem, u"Inbox"_s);
    ASSERT_NE(inbox, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return inbox->text(QAccessible::Description) == u"3"_s; }));
    Reader::press(Reader::find(outline(), QAccessible::ListItem, u"Today"_s));
    EXPECT_EQ(screen().type(), ListType::Today);
    outline().setFocus();
    reader.heard();
    QTest::keyClick(&outline(), Qt::Key_Up);
    EXPECT_TRUE(reader.heard().contains(u"focus: Inbox"_s)) << "not the row beside it";
    pressSidebar(SidebarItem::Contacts);
    const auto group = addGroup(u"Choir"_s);
    EXPECT_TRUE(reader.heard().contains(u"came: Choir"_s));
    const QAccessible::Id choir =
        QAccessible::uniqueId(Reader::find(outline(), QAccessible::ListItem, u"Choir"_s));
    context().deleteObject(group);
    ASSERT_FALSE(DBWorker::saveContext());
    controller().loadContactsGroup();
    EXPECT_TRUE(reader.heard().contains(u"went: "_s));
    EXPECT_EQ(QAccessible::accessibleInterface(choir), nullptr);
}

TEST_F(ReaderTest, TheResultsOfASearchAreCountedAndReadAsTheKeysWalkThem)
{
    run(ActionId::Search);
    SearchField &field = *window().rightToolBarMain()->searchField();
    QTest::keyClicks(&field, u"r"_s);
    QTest::keyClicks(&field, u"e"_s);
    EXPECT_TRUE(reader.hears(u"said: 1 result"_s));
    TableViewExtended &results = *window().rightToolBarMain()->searchPopover()->tableView();
    settle();
    EXPECT_EQ(Reader::of(results).child(0)->role(), QAccessible::Heading);
    reader.heard();
    field.setText(u"te"_s);
    EXPECT_TRUE(reader.hears(u"said: 1 result"_s)) << "another one, though there are as many";
    field.setText(u"re"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Reader::namesIn(results).contains(u"Bread"_s); }));
    QTest::keyClick(&field, Qt::Key_Down);
    EXPECT_TRUE(reader.hears(u"said: Bread"_s));
    Reader::press(Reader::find(results, QAccessible::ListItem, u"Bread"_s));
    EXPECT_EQ(controller().detailStack()->top()->record(), stored(u"Bread"_s));
}

TEST_F(ReaderTest, ABubbleIsADialogOfItsWindowAndADayIsPickedInItByName)
{
    WindowNewTask &form = openNewTask();
    form.taskForm()->setType(Functional::typeStringFromType(TaskType::Appointment));
    QAccessibleInterface &field = Reader::of(find<DatePicker>(form, "datePickerStartDate"));
    EXPECT_EQ(field.text(QAccessible::Name), u"Start Date, None"_s);
    Reader::press(&field);
    QWidget *const bubble = QApplication::activePopupWidget();
    ASSERT_NE(bubble, nullptr);
    QAccessibleInterface &dialog = Reader::of(*bubble);
    EXPECT_EQ(dialog.role(), QAccessible::Dialog);
    EXPECT_TRUE(dialog.state().modal);
    EXPECT_EQ(dialog.parent(), &Reader::of(form));
    EXPECT_EQ(Reader::of(form).child(Reader::of(form).indexOfChild(&dialog)), &dialog);
    const QStringList told = reader.heard();
    EXPECT_TRUE(told.contains(u"came: Edit Start Date"_s)) << qPrintable(told.join(u'\n'));
    EXPECT_EQ(told.last(), u"focus: Saturday, November 21"_s);

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_TRUE(reader.heard().contains(u"focus: Sunday, November 22"_s));
    QAccessibleInterface *month = Reader::find(dialog, QAccessible::Table, u"Edit Start Date"_s);
    ASSERT_NE(month, nullptr);
    EXPECT_EQ(month->tableInterface()->rowCount(), 6);
    EXPECT_EQ(month->tableInterface()->columnDescription(6), u"Sa"_s);
    QAccessibleInterface *day = Reader::find(*month, QAccessible::Cell, u"Friday, November 27"_s);
    ASSERT_NE(day, nullptr);
    EXPECT_EQ(month->tableInterface()->cellAt(day->tableCellInterface()->rowIndex(), 5), day);
    Reader::press(day);
    EXPECT_TRUE(day->state().selected);
    Reader::act(month, QAccessibleActionInterface::nextPageAction());
    EXPECT_TRUE(reader.heard().contains(u"said: December 2026"_s));
    EXPECT_NE(Reader::find(*month, QAccessible::Cell, u"Friday, December 25"_s), nullptr);
    Reader::press(Reader::find(dialog, QAccessible::Button, u"Done"_s));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return field.text(QAccessible::Name).startsWith(u"Start Date, Nov 27, 2026"_s); }));
    const QStringList back = reader.heard();
    EXPECT_TRUE(back.contains(u"went: Edit Start Date"_s));
    EXPECT_EQ(back.filter(u"focus: Start Date"_s).size(), 1) << qPrintable(back.join(u'\n'));
    const ScriptedAlerts alerts({Alert::thirdButton});
    if (QWidget *next = QApplication::activePopupWidget())
        next->close();
    form.close();
}

TEST_F(ReaderTest, AFieldIsClearedWithoutTheMouse)
{
    clickRow(0);
    key(Qt::Key_Return);
    auto &pane = *static_cast<TaskDetailViewController *>(controller().detailStack()->top());
    pane.clickButtonEdit();
    pane.taskForm()->setDetails(u"two pounds"_s);
    QAccessibleInterface *details = Reader::find(pane, QAccessible::Grouping, u"Details"_s);
    ASSERT_NE(details, nullptr);
    Reader::act(details, u"Delete Details"_s);
    EXPECT_EQ(pane.taskForm()->currentTask().details, QString());
    EXPECT_TRUE(details->actionInterface()->actionNames().isEmpty()) << "there is nothing to delete";
}

TEST_F(ReaderTest, SegmentsAreRadioButtons)
{
    showList(SidebarItem::Today);
    auto &view = find<MVSegmentView>(window(), "tasksGroupedView");
    EXPECT_EQ(Reader::of(view).role(), QAccessible::Grouping);
    QAccessibleInterface *category = Reader::find(view, QAccessible::RadioButton, u"Category"_s);
    ASSERT_NE(category, nullptr);
    const bool wasChecked = category->state().checked;
    reader.heard();
    Reader::press(category);
    EXPECT_EQ(category->state().checked, !wasChecked);
    EXPECT_TRUE(reader.heard().contains((wasChecked ? u"unticked: "_s : u"ticked: "_s) + u"Category"_s));
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(reader.heard().last(), u"focus: Project"_s);
}

TEST_F(ReaderTest, ListsOfChoicesAreTicked)
{
    for (const QString &name : {u"Ada"_s, u"Bela"_s})
        context().insert<EntityContacts>()->setFirstName(name);
    ASSERT_FALSE(DBWorker::saveContext());
    const std::unique_ptr<MVPopUp> bubble(
        MVPopUp::of(FilterRow::Editor::Contacts, {.selectedAll = false, .objects = {}}, &window()));
    MVPopUp &people = *bubble;
    people.showBeside(window());
    QAccessibleInterface *ada = Reader::find(window(), QAccessible::CheckBox, u"Ada"_s);
    ASSERT_NE(ada, nullptr) << "the bubble is found from its window";
    reader.heard();
    Reader::act(ada, toggle);
    EXPECT_TRUE(ada->state().checked);
    EXPECT_EQ(reader.heard(), QStringList{u"ticked: Ada"_s});
    auto &lines = *people.findChild<CheckList *>();
    lines.setFocus();
    settle();
    EXPECT_TRUE(reader.heard().contains(u"focus: Ada"_s)) << "the line, not only the list";
    QTest::keyClick(&lines, Qt::Key_Down);
    EXPECT_EQ(reader.heard(), QStringList{u"focus: Bela"_s});
    // Bela takes the line of Ada, which is neither named otherwise nor unticked.
    auto &search = find<QLineEdit>(people, "fieldSearch");
    search.setFocus();
    reader.heard();
    search.setText(u"Be"_s);
    EXPECT_EQ(reader.heard(), QStringList{u"said: 1 result"_s});
    people.close();

    const CalendarAccess access({u"Home"_s, u"Work"_s});
    run(ActionId::Calendars);
    auto &chooser = find<QWidget>(window(), "CalendarsAppleWindow");
    EXPECT_EQ(Reader::of(chooser).role(), QAccessible::Dialog);
    QAccessibleInterface *work = Reader::find(chooser, QAccessible::CheckBox, u"Work"_s);
    ASSERT_NE(work, nullptr);
    EXPECT_TRUE(work->state().checked);
    Reader::press(work);
    EXPECT_FALSE(work->state().checked);
    Reader::act(Reader::find(chooser, QAccessible::CheckBox, u"Home"_s), u"Set Default"_s);
    EXPECT_NE(Reader::find(chooser, QAccessible::CheckBox, u"Home, default calendar"_s), nullptr);
    chooser.close();
}

TEST_F(ReaderTest, CategoriesAreReadAndRenamedInTheirRow)
{
    showList(SidebarItem::Categories);
    auto &table = find<TableViewExtended>(window(), "tableViewCategory");
    EXPECT_EQ(Reader::of(table).child(0)->role(), QAccessible::ListItem);
    table.setFocus();
    QTest::mouseClick(&find<QWidget>(window(), "buttonAdd"), Qt::LeftButton);
    QAccessibleInterface *field = Reader::find(table, QAccessible::EditableText, u"Title"_s);
    ASSERT_NE(field, nullptr) << "the field over the row is in the tree";
    EXPECT_TRUE(field->state().focused);
    field->setText(QAccessible::Value, u"Garden"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    settle();
    EXPECT_NE(Reader::find(table, QAccessible::ListItem, u"Garden"_s), nullptr);
}

TEST_F(ReaderTest, AMapIsWorkedByName)
{
    MapView map({}, window().rightContentView());
    map.resize(200, 200);
    map.show();
    map.showPin({.latitude = 52.5, .longitude = 13.4}, 10);
    QAccessibleInterface &element = Reader::of(map);
    EXPECT_EQ(element.text(QAccessible::Description), u"Latitude 52.5000, longitude 13.4000, zoom 10"_s);
    Reader::act(&element, u"Zoom in"_s);
    EXPECT_EQ(map.zoom(), 11);
    EXPECT_TRUE(reader.heard().contains(u"said: Latitude 52.5000, longitude 13.4000, zoom 11"_s));
    Reader::act(&element, u"Move the pin north"_s);
    EXPECT_EQ(reader.heard().filter(u"said: Latitude 52.5"_s).size(), 1);
    EXPECT_GT(map.pin().latitude, 52.5);
    EXPECT_DOUBLE_EQ(map.pin().longitude, 13.4);
}

TEST_F(ReaderTest, ABubbleThatIsOnlyReadIsReadAtOnce)
{
    clickRow(0);
    reader.heard();
    run(ActionId::WhyIsItHere);
    QWidget *const bubble = QApplication::activePopupWidget();
    ASSERT_NE(bubble, nullptr);
    const QString text = bubble->accessibleName();
    const QStringList told = reader.heard();
    EXPECT_TRUE(told.contains(u"came: "_s + text) && told.last() == u"focus: "_s + text)
        << qPrintable(told.join(u'\n'));
    EXPECT_TRUE(Reader::of(*bubble).state().focusable);
    bubble->close();
    EXPECT_EQ(reader.heard().last(), u"focus: Tea"_s) << "the keys are back";
}

namespace {

/// Very many rows, which count how often they are asked for.
class CountedRows : public TableModel
{
public:
    using TableModel::TableModel;
    int rowCount(const QModelIndex &parent) const override { return parent.isValid() ? 0 : 100'000; }
    RowKind kindOf(int) const override { return RowKind::Item; }
    quint64 stableIdAt(int row) const override
    {
        ++asked;
        return static_cast<quint64>(row) + 1;
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        ++asked;
        return role == Qt::AccessibleTextRole ? QVariant(u"Row %1"_s.arg(index.row())) : QVariant();
    }
    mutable int asked = 0;
};

} // namespace

TEST(LongListReaderTest, AKeyPressAsksForFewRowsAndForNoneWhileNobodyListens)
{
    CountedRows rows;
    TableViewExtended list;
    list.setModel(&rows);
    list.resize(300, 400);
    list.show();
    list.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
    list.selectRow(5);
    const auto askedByAKey = [&] {
        QCoreApplication::processEvents();
        list.viewport()->setUpdatesEnabled(false);
        rows.asked = 0;
        QTest::keyClick(&list, Qt::Key_Down);
        QCoreApplication::processEvents();
        return rows.asked;
    };
    EXPECT_EQ(askedByAKey(), 0);
    {
        Reader reader;
        EXPECT_GT(askedByAKey(), 0);
        EXPECT_TRUE(reader.heard().contains(u"focus: Row 7"_s));
        EXPECT_LT(askedByAKey(), 200);
    }
    list.close();
}

TEST_F(ReaderTest, NothingIsAskedOfTheRowsWhileNobodyListens)
{
    reader.heard();
    Reader::setListening(false);
    clickRow(0);
    key(Qt::Key_Down);
    key(Qt::Key_Space);
    EXPECT_EQ(reader.heard(), QStringList());
    Reader::setListening(true);
    key(Qt::Key_Up);
    EXPECT_TRUE(reader.heard().contains(u"focus: Tea"_s));
}
