// A list of tasks is narrowed by its filter.

#include "filters/FilterButton.h"
#include "filters/FilterButtonCancelView.h"
#include "filters/FilterEntries.h"
#include "filters/MVPopUp.h"
#include "filters/SavedFilter.h"
#include "records/DetailStack.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"
#include "widgets/DatePicker.h"
#include "widgets/EmptyState.h"
#include "widgets/MVSegmentView.h"
#include "widgets/PickerField.h"
#include "widgets/PopUpButton.h"
#include "widgets/Popover.h"

#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

class FilterTest : public ShellTest
{
protected:
    FilterTest()
    {
        for (const int list : {0, 1, 2, 3, 6})
            SavedFilter::ofTasks(list).storePristine();
    }
    FilterButton &button() { return find<FilterButton>(screen(), "buttonFilter"); }
    FilterButtonCancelView &cancel() { return find<FilterButtonCancelView>(screen(), "cancelFilterView"); }
    MVSegmentView &groupingControl() { return find<MVSegmentView>(screen(), "tasksGroupedView"); }
    Popover &open()
    {
        QTest::mouseClick(&button(), Qt::LeftButton);
        EXPECT_NE(button().popover(), nullptr);
        return *button().popover();
    }
    void close()
    {
        QTest::keyClick(button().popover(), Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(button().popover(), nullptr);
    }
    QLineEdit &titleField() { return find<QLineEdit>(*button().popover(), "fieldTitle"); }
    /// Chooses an item of a pop-up of the bubble with the keys.
    void choose(const char *popUp, const QString &item)
    {
        auto &control = find<PopUpButton>(*button().popover(), popUp);
        control.setFocus();
        const int place = control.findText(item);
        ASSERT_GE(place, 0) << qPrintable(item);
        for (int step = control.currentIndex(); step != place; step += step < place ? 1 : -1)
            QTest::keyClick(&control, step < place ? Qt::Key_Down : Qt::Key_Up);
    }
    bool shows(const QStringList &titles)
    {
        return QTest::qWaitFor([&] { return shownTitles() == titles; });
    }
    static FilterEntry entry(int list) { return SavedFilter::ofTasks(list).entry(); }
    static QVariant storedValue(int list, const QString &key)
    {
        const QVariantList array = entry(list).value(u"Array"_s).toList();
        return array.at(DBWorker::indexObject(key, array)).toMap().value(u"Value"_s);
    }
};

TEST_F(FilterTest, EveryKeystrokeNarrowsTheListAndOnePressClearsIt)
{
    addInbox({u"Buy apples"_s, u"buy bread"_s, u"Sell car"_s});
    EXPECT_EQ(button().text(), u"Filter"_s);
    EXPECT_FALSE(cancel().isVisible());
    open();
    EXPECT_TRUE(titleField().hasFocus());
    QTest::keyClicks(&titleField(), u"bUy"_s);
    EXPECT_TRUE(shows({u"Buy apples"_s, u"buy bread"_s}));
    EXPECT_EQ(storedValue(0, u"Title"_s), u"bUy"_s);
    EXPECT_EQ(button().text(), u"Filtered"_s);
    EXPECT_EQ(button().text(), u"Filtered"_s);
    QTest::keyClicks(&titleField(), u" b"_s);
    EXPECT_TRUE(shows({u"buy bread"_s}));
    QTest::keyClick(&titleField(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&titleField(), Qt::Key_Backspace);
    EXPECT_TRUE(shows({u"Buy apples"_s, u"buy bread"_s, u"Sell car"_s}));
    close();
    EXPECT_EQ(button().text(), u"Filtered"_s);
    QTest::mouseClick(&cancel(), Qt::LeftButton);
    EXPECT_EQ(button().text(), u"Filter"_s);
    EXPECT_FALSE(cancel().isVisible());
    EXPECT_EQ(entry(0), filters::pristineTaskEntry());
}

TEST_F(FilterTest, RowsOfTheBubbleSetTheirCriteriaAndComeBackWithThem)
{
    const CategoryPtr work = EntityCategory::title(u"Work"_s);
    add(u"report"_s, [&](MVTask &task) {
        task.category = work;
        task.priority = Priority::High;
    });
    add(u"lunch"_s, [](MVTask &task) { task.priority = Priority::Low; });
    showList(SidebarItem::NotDone);
    Popover *bubble = &open();
    QStringList rows;
    for (const QWidget *row : bubble->findChildren<QWidget *>(QRegularExpression(u"^row[A-Z]\\w+$"_s))) {
        rows << row->objectName().mid(3);
        EXPECT_EQ(row->height(), 45) << qPrintable(row->objectName());
    }
    EXPECT_EQ(rows, QStringList({u"Title"_s, u"Type"_s, u"Category"_s, u"Status"_s, u"Priority"_s,
                                 u"Period"_s, u"Location"_s, u"Delegate"_s, u"Company"_s, u"Project"_s}));
    choose("popUpCategory", u"Work"_s);
    EXPECT_TRUE(shows({u"report"_s}));
    EXPECT_EQ(storedValue(6, u"Category"_s), work->uri());
    choose("popUpCategory", u"All"_s);
    choose("popUpPriority", u"Low"_s);
    EXPECT_TRUE(shows({u"lunch"_s}));
    EXPECT_EQ(storedValue(6, u"Priority"_s), 2);
    close();
    showList(SidebarItem::Inbox);
    showList(SidebarItem::NotDone);
    EXPECT_EQ(shownTitles(), QStringList{u"lunch"_s});
    EXPECT_EQ(button().text(), u"Filtered"_s);
    bubble = &open();
    EXPECT_EQ(find<PopUpButton>(*bubble, "popUpPriority").currentText(), u"Low"_s);
    EXPECT_EQ(find<PopUpButton>(*bubble, "popUpStatus").currentText(), u"All"_s);
    choose("popUpPriority", u"All"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return shownTitles().size() == 2; }));
    EXPECT_EQ(button().text(), u"Filtered"_s);
    close();
    run(ActionId::ClearFilter);
    EXPECT_EQ(button().text(), u"Filter"_s);
}

TEST_F(FilterTest, AListThatTheFilterEmptiesSaysSoAndTakesItBack)
{
    addInbox({u"apple"_s});
    clickRow(0);
    key(Qt::Key_Return);
    EXPECT_FALSE(controller().detailStack()->isEmpty());
    run(ActionId::FilterTasks);
    QTest::keyClicks(&titleField(), u"pear"_s);
    EXPECT_TRUE(shows({}));
    EXPECT_TRUE(controller().detailStack()->isEmpty());
    close();
    auto &help = find<QPushButton>(screen(), "buttonOfEmptyState");
    ASSERT_TRUE(help.isVisible());
    int visible = 0;
    for (const EmptyState *state : screen().findChildren<EmptyState *>())
        visible += state->isVisible() ? 1 : 0;
    EXPECT_EQ(visible, 1);
    QTest::mouseClick(&help, Qt::LeftButton);
    EXPECT_EQ(shownTitles(), QStringList{u"apple"_s});
    EXPECT_FALSE(help.isVisible());
    EXPECT_TRUE(list().hasFocus());
}

TEST_F(FilterTest, APaneGoesWithItsRowUnlessItIsEdited)
{
    addInbox({u"apple"_s, u"apricot"_s});
    run(ActionId::FilterTasks);
    QTest::keyClicks(&titleField(), u"ap"_s);
    // Both fit from the beginning, so that the fetch of the filter must be waited for.
    QTest::qWait(50);
    EXPECT_TRUE(shows({u"apple"_s, u"apricot"_s}));
    close();
    const auto leaves = [&](const QString &title) {
        stored(title)->setDueSomeDay(true);
        ASSERT_FALSE(DBWorker::saveContext());
    };
    clickRow(0);
    key(Qt::Key_Return);
    leaves(u"apple"_s);
    EXPECT_TRUE(shows({u"apricot"_s}));
    EXPECT_TRUE(controller().detailStack()->isEmpty());
    EXPECT_EQ(list().selectedRows(), std::set<int>{0});
    key(Qt::Key_Return);
    QTest::keyClick(controller().detailStack()->top(), Qt::Key_Return);
    ASSERT_TRUE(controller().detailStack()->top()->canSave());
    leaves(u"apricot"_s);
    EXPECT_TRUE(shows({}));
    run(ActionId::ClearFilter);
    EXPECT_FALSE(controller().detailStack()->isEmpty()) << "what is being written there is not lost";
}

TEST_F(FilterTest, AGroupingKeepsTheFilterWaiting)
{
    add(u"apple"_s);
    add(u"pear"_s);
    showList(SidebarItem::NotDone);
    open();
    QTest::keyClicks(&titleField(), u"pe"_s);
    EXPECT_TRUE(shows({u"pear"_s}));
    close();
    groupingControl().setFocus();
    QTest::keyClick(&groupingControl(), Qt::Key_Space);
    EXPECT_EQ(groupingControl().selectedIndex(), 0);
    EXPECT_EQ(shownTitles().size(), 3);
    EXPECT_EQ(button().text(), u"Filter inactive, grouping is activated"_s);
    EXPECT_FALSE(button().isEnabled());
    EXPECT_FALSE(cancel().isVisible());
    EXPECT_FALSE(controller().commands()->action(ActionId::FilterTasks)->isEnabled());
    QTest::mouseClick(&button(), Qt::LeftButton);
    EXPECT_EQ(button().popover(), nullptr);
    QTest::keyClick(&groupingControl(), Qt::Key_Space);
    EXPECT_EQ(shownTitles(), QStringList{u"pear"_s});
    EXPECT_EQ(button().text(), u"Filtered"_s);
    EXPECT_TRUE(cancel().isVisible());
}

TEST_F(FilterTest, AnotherGroupingKeepsWhatIsSelectedAndTakesNothingInItsPlace)
{
    add(u"apple"_s);
    add(u"pear"_s);
    showList(SidebarItem::NotDone);
    clickRow(static_cast<int>(shownTitles().indexOf(u"pear"_s)));
    groupingControl().setFocus();
    QTest::keyClick(&groupingControl(), Qt::Key_Space);
    EXPECT_EQ(selectedTitles(), QStringList{u"pear"_s});
    key(Qt::Key_Space);
    groupingControl().setFocus();
    QTest::keyClick(&groupingControl(), Qt::Key_Space);
    EXPECT_EQ(shownTitles(), QStringList{u"apple"_s});
    EXPECT_TRUE(selectedTitles().isEmpty()) << "the task that was ticked has left the list";
}

TEST_F(FilterTest, SeveralPeopleArePickedOrNobody)
{
    const auto person = [this](const QString &name) {
        const auto contact = context().insert<EntityContacts>();
        contact->setFirstName(name);
        return contact;
    };
    const ContactPtr ann = person(u"Ann"_s);
    add(u"of Ann"_s, [&](MVTask &task) { task.delegateToUser = ann; });
    add(u"of Bo"_s, [&](MVTask &task) { task.delegateToUser = person(u"Bo"_s); });
    add(u"of nobody"_s);
    showList(SidebarItem::NotDone);
    const auto pick = [this](const QString &name) {
        if (!button().popover())
            open();
        auto &field = find<PickerField>(*button().popover(), "popUpDelegate");
        QTest::mouseClick(&field, Qt::LeftButton);
        auto &bubble = find<MVPopUp>(field, "MVPopUp");
        if (name.isEmpty()) {
            QTest::mouseClick(&find<QPushButton>(bubble, "buttonAll"), Qt::LeftButton);
        } else {
            QTest::keyClicks(&find<QLineEdit>(bubble, "fieldSearch"), name);
            QTest::keyClick(&find<QLineEdit>(bubble, "fieldSearch"), Qt::Key_Down);
            QTest::keyClick(bubble.findChild<CheckList *>(), Qt::Key_Space);
        }
        bubble.clickDone();
        return field.text();
    };
    EXPECT_EQ(pick({}), u"None"_s);
    EXPECT_TRUE(shows({u"of nobody"_s}));
    EXPECT_EQ(pick(u"an"_s), u"\u0421hoose 1 item"_s);
    EXPECT_TRUE(shows({u"of Ann"_s}));
    EXPECT_EQ(storedValue(6, u"Delegate"_s), QVariantList{ann->uri()});
    EXPECT_EQ(pick({}), u"All"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return shownTitles().size() == 3; }));
    EXPECT_EQ(storedValue(6, u"Delegate"_s), filters::allMarker);
    button().closePopover();
}

TEST_F(FilterTest, APeriodOfWholeDaysIsPickedAndTakenBack)
{
    const auto madeAt = [this](const QString &title, Date date) {
        add(title);
        stored(title)->setCreationDate(date);
    };
    madeAt(u"old"_s, localDate(2026, 3, 1));
    madeAt(u"this morning"_s, localDate(2026, 11, 21, 7));
    madeAt(u"tonight"_s, localDate(2026, 11, 21, 22));
    EXPECT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::NotDone);
    EXPECT_EQ(shownTitles().size(), 3);
    const QStringList today = {u"this morning"_s, u"tonight"_s};
    const auto pickOffered = [this](const char *picker) {
        // This platform takes the lower bubble away with the upper one.
        if (!button().popover())
            open();
        auto &field = find<PickerField>(*button().popover(), picker);
        QTest::mouseClick(&field, Qt::LeftButton, {}, QPoint(20, 15));
        auto &days = find<Popover>(*button().popover(), "datePickerPopover");
        QTest::mouseClick(&find<QPushButton>(days, "buttonDone"), Qt::LeftButton);
    };
    open();
    const QString untouched = find<PickerField>(*button().popover(), "pickerFrom").text();
    const auto isInForce = [this] {
        QWidget &bubble = *button().popover();
        const bool isSaid = find<DatePicker>(bubble, "pickerFrom").isInForce();
        EXPECT_EQ(find<DatePicker>(bubble, "pickerTo").isInForce(), isSaid);
        EXPECT_EQ(find<QToolButton>(bubble, "buttonClearPeriod").isVisible(), isSaid);
        return isSaid;
    };
    EXPECT_FALSE(isInForce()) << "nothing was picked";
    pickOffered("pickerTo");
    pickOffered("pickerFrom");
    EXPECT_TRUE(QTest::qWaitFor([&] {
        QStringList titles = shownTitles();
        titles.sort();
        return titles == today;
    })) << qPrintable(shownTitles().join(u','));
    if (!button().popover())
        open();
    auto &from = find<PickerField>(*button().popover(), "pickerFrom");
    EXPECT_TRUE(isInForce());
    QTest::mouseClick(&find<QToolButton>(*button().popover(), "buttonClearPeriod"), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([this] { return shownTitles().size() == 3; }));
    EXPECT_EQ(from.text(), untouched);
    EXPECT_FALSE(isInForce());
    close();
}
