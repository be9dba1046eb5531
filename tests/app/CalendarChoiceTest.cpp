#include "foundation/ApplicationPaths.h"
#include "support/TestSupport.h"
#include "workspace/PlatformConfiguration.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

/// Which calendars the program takes when it is started for the first time, and what it writes down.
class CalendarChoiceTest : public testing::Test
{
protected:
    CalendarChoiceTest()
    {
        QFile::remove(path);
        environment.insert(u"GSETTINGS_BACKEND"_qs, u"memory"_qs);
    }
    ~CalendarChoiceTest() override { QFile::remove(path); }

    /// Runs the program until it has chosen, and ends it as a session does while its question stands.
    QString choiceOfAFirstStart()
    {
        QProcess program;
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.start(QStringLiteral(MORVANE_PROGRAM), QStringList());
        EXPECT_TRUE(program.waitForStarted());
        QElapsedTimer waited;
        waited.start();
        while (choice().isEmpty() && waited.elapsed() < 30000)
            QThread::msleep(50);
        QThread::msleep(500);
        program.terminate();
        EXPECT_TRUE(program.waitForFinished(20000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        return choice();
    }
    static QString choice() { return PlatformConfiguration().text(u"calendarStore"_qs); }

    const QString path = ApplicationPaths::configFolder() + u"/Morvane/platform.json"_qs;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

TEST_F(CalendarChoiceTest, TheDesktopsCalendarsWhereTheirDaemonAnswers)
{
    EXPECT_EQ(choiceOfAFirstStart(), u"eds"_qs);
    EXPECT_EQ(PlatformConfiguration().authorization(u"events"_qs), 0)
        << "a question that went down with the program was not answered";
}

TEST_F(CalendarChoiceTest, AFolderWhereThereIsNoDaemon)
{
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_qs, u"unix:path=/nonexistent/bus"_qs);
    EXPECT_EQ(choiceOfAFirstStart(), u"folder"_qs);
    environment.remove(u"DBUS_SESSION_BUS_ADDRESS"_qs);
    EXPECT_EQ(choiceOfAFirstStart(), u"folder"_qs) << "the first choice stands";
}
