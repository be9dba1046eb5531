// Panes of any kind come, cover each other and go with their records.

#include "records/DetailStack.h"
#include "records/TabsViewController.h"
#include "ui/support/ShellTest.h"
#include "widgets/Animations.h"

#include <QSignalSpy>

namespace {

/// A pane about one record, and nothing else.
class Pane : public DetailViewController
{
public:
    explicit Pane(ObjectPtr shownRecord)
        : record(std::move(shownRecord))
    {}
    bool shows(const ObjectPtr &other) const override { return other == record; }

private:
    ObjectPtr record;
};

/// A screen that leaves room as the first screen does.
class WideScreen : public TabsViewController
{
public:
    WideScreen()
        : TabsViewController(QStringLiteral("Wide"))
    {}
    DetailPlace detailPlace() const override { return {.width = 0.6485, .topInset = 0}; }
    void setDetailSpace(int width) override { space = width; }

    int space = -1;
};

class DetailStackTest : public ShellTest
{
protected:
    DetailStackTest()
    {
        content.resize(1000, 600);
        content.show();
    }
    Pane *show(const ObjectPtr &record, QWidget *over = nullptr)
    {
        auto *pane = new Pane(record);
        stack.showDetail(pane, over ? over : &screen);
        return pane;
    }
    template <typename Entity>
    std::shared_ptr<Entity> make()
    {
        return context().insert<Entity>();
    }

    QWidget content;
    DetailStack stack{content};
    WideScreen screen;
};

} // namespace

TEST_F(DetailStackTest, TheScreenBelowAnEmptyStackSaysWhereAllPanesLie)
{
    Pane *const first = show(make<EntityProject>());
    EXPECT_EQ(first->geometry(), QRect(1000 - 649, 0, 649, 600));
    EXPECT_EQ(screen.space, 595);
    Pane *const second = show(make<EntityTask>(), first);
    EXPECT_EQ(second->geometry(), first->geometry());
    content.resize(800, 500);
    EXPECT_EQ(second->geometry(), QRect(800 - 519, 0, 519, 500));
    stack.removeAllDetail();
    EXPECT_TRUE(stack.isEmpty());
    EXPECT_EQ(screen.space, 0);
}

TEST_F(DetailStackTest, PanesGoWithTheirRecordsWhereverTheyLie)
{
    const ProjectPtr house = make<EntityProject>();
    const ProjectPtr garden = make<EntityProject>();
    const TaskPtr paint = make<EntityTask>();
    Pane *const first = show(house);
    Pane *const second = show(paint, first);
    QSignalSpy gone(second, &DetailViewController::dismissDeteilViewController);
    QSignalSpy houseGone(first, &DetailViewController::dismissDeteilViewController);
    Pane *const third = show(garden, second);

    stack.removeAllDetailFrom({paint});
    EXPECT_EQ(gone.size(), 1);
    EXPECT_EQ(stack.top(), third);
    EXPECT_TRUE(third->isActive());
    stack.removeAllDetailFrom({garden});
    EXPECT_EQ(stack.top(), first);
    EXPECT_TRUE(first->isActive() && first->isVisible());
    EXPECT_EQ(screen.space, 595);
    stack.removeAllDetailFrom({garden});
    EXPECT_EQ(houseGone.size(), 0);
    stack.removeAllDetailFrom({house});
    EXPECT_EQ(houseGone.size(), 1);
    EXPECT_EQ(screen.space, 0);
}

TEST_F(DetailStackTest, OnlyThePaneOnTopGoesBackAndOnlyOnce)
{
    Pane *const first = show(make<EntityProject>());
    Pane *const second = show(make<EntityTask>(), first);
    QSignalSpy gone(second, &DetailViewController::dismissDeteilViewController);
    stack.goBack(first);
    EXPECT_EQ(stack.top(), second);
    stack.goBack(second);
    stack.goBack(second);
    EXPECT_EQ(gone.size(), 1);
    EXPECT_EQ(stack.top(), first);
}

TEST_F(DetailStackTest, WhatIsOnItsWayOutCanBeOpenedAnew)
{
    const auto task = make<EntityTask>();
    Pane *const former = show(task);
    Animations::setEnabled(true);
    stack.goBack(former);
    EXPECT_EQ(stack.paneOf(task), nullptr);
    Pane *const again = show(task);
    EXPECT_EQ(stack.paneOf(task), again);
    EXPECT_TRUE(QTest::qWaitFor([&] { return again->geometry() == QRect(351, 0, 649, 600); }));
    QTest::qWait(Animations::duration(Animations::detailSlideOut));
    Animations::setEnabled(false);
    EXPECT_EQ(stack.top(), again);
    EXPECT_TRUE(again->isVisible() && again->isActive());
    EXPECT_EQ(screen.space, 595);
}
