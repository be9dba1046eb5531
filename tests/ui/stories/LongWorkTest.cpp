// Work on many tasks shows how far it is, and can be stopped.

#include "widgets/LongWork.h"
#include "objectstore/Sqlite.h"
#include "ui/support/ShellTest.h"
#include "widgets/ProgressSign.h"
#include "widgets/WaitSign.h"

#include <QApplication>
#include <QBackingStore>
#include <QPushButton>
#include <QThread>

#include <sqlite3.h>

#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

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

namespace {

/// Another program that is in the middle of a change to the store for a while.
class Holder
{
public:
    Holder(const QString &path, std::chrono::milliseconds length)
    {
        EXPECT_EQ(sqlite3_open(path.toUtf8().constData(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
        thread = std::thread([this, length] {
            std::this_thread::sleep_for(length);
            sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
        });
    }
    ~Holder()
    {
        thread.join();
        sqlite3_close(connection);
    }

private:
    sqlite3 *connection = nullptr;
    std::thread thread;
};

/// When the sign of a wait stood, and changed the picture of the window, in milliseconds from the beginning
/// of the wait; -1 for never. Nothing paints itself meanwhile.
class WaitSignWatch : public QObject
{
public:
    explicit WaitSignWatch(const QWidget &watched)
        : window(watched)
        , before(picture())
    {
        qApp->installEventFilter(this);
        sqlite::setWaitListener([this](std::chrono::milliseconds waited) {
            isWaiting = true;
            WaitSign::showForStore(waited);
            isWaiting = false;
            if (shownAfter < 0 && WaitSign::isShown() && picture() != before)
                shownAfter = waited.count();
        });
    }
    ~WaitSignWatch() override { sqlite::setWaitListener(WaitSign::showForStore); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        EXPECT_FALSE(isWaiting && event->type() == QEvent::Paint);
        return false;
    }
    qint64 shownAfter = -1;

private:
    QImage picture() const { return dynamic_cast<QImage &>(*window.backingStore()->paintDevice()).copy(); }

    const QWidget &window;
    QImage before;
    bool isWaiting = false;
};

} // namespace

TEST_F(LongWorkTest, AWaitForAnotherProgramShowsSoonAndOnlyWhileItLasts)
{
    addInbox({u"a"_s});
    const QString path = AppDelegate::shared()->managedObjectContext().path();
    const auto saved = [&](const QString &title, std::chrono::milliseconds held) {
        const Holder other(path, held);
        const WaitSignWatch watch(window());
        DBWorker::allInboxTasks().first()->setTitle(title);
        EXPECT_FALSE(DBWorker::saveContext());
        return watch.shownAfter;
    };
    // A list that waits to be painted would read its rows.
    list().viewport()->update();
    const qint64 shown = saved(u"b"_s, 1s);
    EXPECT_GE(shown, 100);
    EXPECT_LT(shown, 700);
    EXPECT_EQ(saved(u"c"_s, 20ms), -1) << "nobody notices that";
    EXPECT_TRUE(QTest::qWaitFor([] { return !WaitSign::isShown(); }));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(shownTitles(), QStringList(u"c"_s));
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
