// Work on many tasks shows how far it is, and can be stopped.

#include "widgets/LongWork.h"
#include "ui/support/ShellTest.h"
#include "widgets/ProgressSign.h"

#include <QApplication>
#include <QPushButton>
#include <QThread>

using namespace Qt::Literals::StringLiterals;

static ProgressSign *shownSign()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *sign = qobject_cast<ProgressSign *>(widget); sign && sign->isVisible())
            return sign;
    }
    return nullptr;
}

using LongWorkTest = ShellTest;

TEST_F(LongWorkTest, QuickWorkShowsNothing)
{
    LongWork work(1000, {});
    for (int step = 0; step < 1000; ++step)
        ASSERT_TRUE(work.step());
    EXPECT_EQ(shownSign(), nullptr);
}

TEST_F(LongWorkTest, SlowWorkShowsHowFarItIsAndStopsOnCancel)
{
    constexpr int steps = 200;
    int done = 0;
    {
        LongWork work(steps, {});
        while (done < steps) {
            ++done;
            QThread::msleep(10);
            if (!work.step())
                break;
            if (ProgressSign *sign = shownSign()) {
                EXPECT_GT(sign->value(), 0);
                QTest::mouseClick(sign->findChild<QPushButton *>(), Qt::LeftButton);
            }
        }
    }
    EXPECT_GT(done, 10);
    EXPECT_LT(done, steps);
    EXPECT_EQ(shownSign(), nullptr);
}

TEST_F(LongWorkTest, ThePointerRestsAgainAfterDeletingAndUndoing)
{
    addInbox({u"a"_s, u"b"_s});
    clickRow(0);
    ScriptedAlerts alerts({Alert::firstButton});
    key(Qt::Key_Delete);
    run(ActionId::Undo);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(shownTitles().size(), 2);
}
