// A store that takes no changes: nothing that was typed is lost, each command says so, and the program can be
// left.

#include "support/FullDisk.h"
#include "shell/ApplicationLife.h"
#include "support/MeanwhileAlerts.h"
#include "ui/support/ShellTest.h"

#include <QApplication>
#include <QTimer>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

class FullDiskTest : public ShellTest
{
protected:
    /// A command that the user was told of.
    void changeInVain()
    {
        const ScriptedAlerts told({Alert::firstButton});
        context().insert<EntityNote>()->setTitle(u"unsaved"_s);
        EXPECT_FALSE(DBWorker::saveOrTell());
    }
    /// Whether the program ends by itself before a user would lose patience.
    static bool ends()
    {
        constexpr int patience = 5000;
        constexpr int tooLate = 1;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [] { QCoreApplication::exit(tooLate); });
        timer.start(patience);
        return QCoreApplication::exec() != tooLate;
    }
};

TEST_F(FullDiskTest, EachTryToSaveANewTaskSaysThatItFailedAndTheWindowStays)
{
    showList(SidebarItem::Inbox);
    openNewTask();
    QTest::keyClicks(QApplication::focusWidget(), u"Buy bread"_s);
    {
        const FullDisk disk;
        const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
        for (size_t count = 1; count <= 2; ++count) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QCoreApplication::processEvents();
            ASSERT_EQ(alerts.asked().size(), count);
            EXPECT_EQ(alerts.asked().back().message, u"Your changes could not be saved"_s);
            ASSERT_NE(newTaskWindow(), nullptr);
        }
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(inboxTitles(), QStringList{u"Buy bread"_s});
}

TEST_F(FullDiskTest, QuitAsksOnceAndEndsOrStaysAsTheUserSays)
{
    ApplicationLife life(*delegate, nullptr);
    const FullDisk disk;
    changeInVain();
    const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
    life.quit();
    EXPECT_FALSE(ApplicationLife::isEnding());
    EXPECT_EQ(alerts.asked().size(), 1u);
    QTimer::singleShot(0, &life, &ApplicationLife::quit);
    EXPECT_TRUE(ends());
    EXPECT_TRUE(ApplicationLife::isEnding());
    EXPECT_EQ(alerts.asked().size(), 2u);
}

TEST_F(FullDiskTest, ASignalEndsTheProgramWithoutAQuestion)
{
    const ApplicationLife life(*delegate, nullptr);
    const FullDisk disk;
    changeInVain();
    const ScriptedAlerts none;
    std::raise(SIGTERM);
    EXPECT_TRUE(ends());
    EXPECT_TRUE(ApplicationLife::isEnding());
}

TEST_F(FullDiskTest, ASignalEndsTheProgramWhileItAsksWhetherToQuit)
{
    ApplicationLife life(*delegate, nullptr);
    const FullDisk disk;
    changeInVain();
    const MeanwhileAlerts alerts(Alert::secondButton, [] { std::raise(SIGTERM); });
    QTimer::singleShot(0, &life, &ApplicationLife::quit);
    EXPECT_TRUE(ends());
    EXPECT_EQ(alerts.asked(), 1);
    EXPECT_TRUE(ApplicationLife::isEnding());
}
