// Several contacts or companies are picked in a bubble.

#include "filters/MVPopUp.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

using namespace Qt::Literals::StringLiterals;

class PopUpTest : public ShellTest
{
protected:
    PopUpTest()
    {
        for (const QString &title : {u"Bank"_s, u"Bakery"_s, u"School"_s}) {
            companies.push_back(context().insert<EntityCompany>());
            companies.back()->setTitle(title);
        }
        EXPECT_FALSE(DBWorker::saveContext());
    }

    std::vector<CompanyPtr> companies;
};

TEST_F(PopUpTest, CompaniesAreSearchedMarkedAndHandedOver)
{
    const std::unique_ptr<MVPopUp> bubble(
        MVPopUp::of(FilterRow::Editor::Companies, {.selectedAll = false, .objects = {}}, &window()));
    MVPopUp &popUp = *bubble;
    FilterSelection taken;
    QObject::connect(&popUp, &MVPopUp::toPopUp, &popUp,
                     [&](const FilterSelection &selected) { taken = selected; });
    popUp.showBeside(window());
    EXPECT_EQ(popUp.size(), QSize(350, 223));
    auto &table = *popUp.findChild<CheckList *>();
    const int before = table.lineCount();
    QTest::keyClicks(popUp.focusWidget(), u"ba"_s);
    EXPECT_LT(table.lineCount(), before);
    QTest::keyClick(popUp.focusWidget(), Qt::Key_Down);
    int bakery = 0;
    while (table.textOf(bakery) != u"Bakery"_s)
        QTest::keyClick(&table, Qt::Key_Down), ++bakery;
    QTest::keyClick(&table, Qt::Key_Space);
    EXPECT_TRUE(table.isMarked(bakery));
    QTest::keyClick(&table, Qt::Key_Return);
    EXPECT_FALSE(popUp.isVisible());
    EXPECT_EQ(taken.objects, std::vector<ObjectPtr>{companies[1]});
    EXPECT_FALSE(taken.selectedAll);
}

TEST_F(PopUpTest, AllAreMarkedAndUnmarkedByOneButton)
{
    const std::unique_ptr<MVPopUp> bubble(
        MVPopUp::of(FilterRow::Editor::Companies, {.selectedAll = false, .objects = {}}, &window()));
    MVPopUp &popUp = *bubble;
    popUp.showBeside(window());
    auto &table = *popUp.findChild<CheckList *>();
    auto &button = find<QPushButton>(popUp, "buttonAll");
    EXPECT_EQ(button.text(), u"Mark all"_s);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(button.text(), u"Unmark all"_s);
    for (int line = 0; line < table.lineCount(); ++line)
        EXPECT_TRUE(table.isMarked(line));
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, QPoint(30, 20));
    EXPECT_FALSE(table.isMarked(0));
    EXPECT_EQ(button.text(), u"Mark all"_s);
    FilterSelection taken{.selectedAll = false, .objects = {}};
    QObject::connect(&popUp, &MVPopUp::toPopUp, &popUp,
                     [&](const FilterSelection &selected) { taken = selected; });
    popUp.findChild<QLineEdit *>()->setFocus();
    QTest::keyClicks(popUp.focusWidget(), u"ba"_s);
    QTest::mouseClick(&button, Qt::LeftButton);
    popUp.clickDone();
    EXPECT_TRUE(taken.selectedAll) << "all are all, whatever was searched for";
}

TEST_F(PopUpTest, ALongListHasHeadingsThatNobodyMarks)
{
    constexpr int count = 100'000;
    std::vector<CheckList::Line> lines = {{.text = u"A"_s, .isHeading = true}};
    for (int line = 1; line < count; ++line)
        lines.push_back({QString::number(line)});
    CheckList list;
    list.setLines(std::move(lines));
    list.resize(300, 400);
    list.show();
    const QSignalSpy told(list.model(), &QAbstractItemModel::dataChanged);
    list.setMarked([](int) { return true; });
    EXPECT_EQ(told.size(), 1) << "however many lines there are";
    EXPECT_FALSE(list.isMarked(0));
    EXPECT_TRUE(list.isMarked(1) && list.isMarked(count - 1));
    EXPECT_EQ(list.currentIndex().row(), 1);
    QSignalSpy pressed(&list, &CheckList::linePressed);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualRect(list.model()->index(0, 0)).center());
    EXPECT_TRUE(pressed.isEmpty());
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualRect(list.model()->index(2, 0)).center());
    ASSERT_EQ(pressed.size(), 1);
    EXPECT_EQ(pressed.front().front().toInt(), 2);
}
