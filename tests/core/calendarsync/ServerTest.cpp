// The folder of calendars is kept in step with a server by another program, and a second device with the same
// server: edits on both devices, and kills of ours, end in agreement.

#include "CalendarTest.h"

#include "calendarsync/CalendarOutbox.h"

#include <gmock/gmock.h>

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>

#include <random>

#include <csignal>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A port of the loopback address that nobody uses.
int freePort()
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    const bool isBound = bind(listener, generic, size) == 0 && getsockname(listener, generic, &size) == 0;
    close(listener);
    return isBound ? ntohs(address.sin_port) : 0;
}

bool answers(int port)
{
    const int connection = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const bool isThere = connect(connection, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0;
    close(connection);
    return isThere;
}

class Server : public CalendarTest
{
protected:
    ~Server() override
    {
        server.kill();
        server.waitForFinished();
    }

    static bool isInstalled()
    {
        return !QStandardPaths::findExecutable(u"vdirsyncer"_qs).isEmpty() &&
               !QStandardPaths::findExecutable(u"radicale"_qs).isEmpty();
    }
    void writeFile(const QString &path, const QByteArray &bytes) const
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QString home(const char *name) const { return place.filePath(QLatin1String(name)); }

    void start()
    {
        UserDefaults::standard().setObject(settings::frequencyCalendarPeriod, 2);
        environment.insert(u"HOME"_qs, place.path());
        environment.insert(u"LC_ALL"_qs, u"C.UTF-8"_qs);
        const int port = freePort();
        writeFile(home("server/collection-root/me/home/.Radicale.props"), R"({"tag": "VCALENDAR"})");
        writeFile(home("radicale.conf"), "[server]\nhosts = 127.0.0.1:" + QByteArray::number(port) +
                                             "\n[auth]\ntype = none\n[storage]\nfilesystem_folder = " +
                                             QFile::encodeName(home("server")) + "\n");
        server.setProcessEnvironment(environment);
        server.setStandardOutputFile(QProcess::nullDevice());
        server.setStandardErrorFile(QProcess::nullDevice());
        server.start(u"radicale"_qs, {u"-C"_qs, home("radicale.conf")});
        for (int tries = 0; tries < 300 && !answers(port); ++tries)
            QThread::msleep(100);
        ASSERT_TRUE(answers(port));
        QDir().mkpath(home("phone/home"));
        const QByteArray url = "http://127.0.0.1:" + QByteArray::number(port) + "/";
        QByteArray config = "[general]\nstatus_path = \"" + QFile::encodeName(home("status")) + "\"\n";
        const QByteArray here = QFile::encodeName(QFileInfo(folderOf(u"Home"_qs)).path());
        for (const auto &[name, folder, collection] :
             {std::tuple<QByteArray, QByteArray, QByteArray>("here", here, "Home"),
              {"phone", QFile::encodeName(home("phone")), "home"}})
            config += "[pair " + name + "]\na = \"" + name + "_files\"\nb = \"" + name +
                      "_server\"\ncollections = [[\"" + name + "\", \"" + collection +
                      "\", \"home\"]]\nconflict_resolution = \"b wins\"\n[storage " + name +
                      "_files]\ntype = \"filesystem\"\nfileext = \".ics\"\npath = \"" + folder +
                      "\"\n[storage " + name + "_server]\ntype = \"caldav\"\nurl = \"" + url +
                      "\"\nusername = \"me\"\npassword = \"me\"\n";
        writeFile(home("vdirsyncer.conf"), config);
        synchronise({u"discover"_qs});
    }
    void synchronise(const QStringList &command = {u"sync"_qs}) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(u"vdirsyncer"_qs, QStringList{u"-c"_qs, home("vdirsyncer.conf")} + command);
        EXPECT_TRUE(process.waitForFinished(120'000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAll().constData();
    }

    // On the other device.
    QStringList phoneFiles() const { return QDir(home("phone/home")).entryList({u"*.ics"_qs}, QDir::Files); }
    void makeOnPhone()
    {
        const QByteArray number = QByteArray::number(++last);
        writeFile(home("phone/home/") + u"phone"_qs + QString::fromLatin1(number) + u".ics"_qs,
                  "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VEVENT\r\nUID:phone" +
                      number + "\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Title " + number +
                      "\r\nDTSTART:202611" + QByteArray::number(23 + upTo(6)) +
                      "T100000Z\r\nDURATION:PT1H\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
        wanted.insert(u"Title "_qs + QString::fromLatin1(number));
    }
    void changeOnPhone(bool isRemoved)
    {
        const QStringList files = phoneFiles();
        if (files.isEmpty())
            return;
        const QString path = home("phone/home/") + files.at(upTo(int(files.size()) - 1));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QString text = QString::fromUtf8(file.readAll());
        file.close();
        static const QRegularExpression title(u"SUMMARY:([^\r\n]*)"_qs);
        wanted.remove(title.match(text).captured(1));
        if (isRemoved) {
            EXPECT_TRUE(QFile::remove(path));
            return;
        }
        const QString other = u"Title %1"_qs.arg(++last);
        writeFile(path, text.replace(title, u"SUMMARY:"_qs + other).toUtf8());
        wanted.insert(other);
    }

    // Here.
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random); }
    static std::vector<TaskPtr> openRows()
    {
        std::vector<TaskPtr> open = rows();
        std::erase_if(open, [](const TaskPtr &row) {
            return row->status() == TaskStatus::Done || row->title() == u"Anchor"_qs;
        });
        return open;
    }
    void makeHere(int number)
    {
        makeAppointment(u"Title %1"_qs.arg(number), localDate(2026, 11, 23 + number % 6, 8 + number % 9));
    }
    void changeHere(bool isRemoved)
    {
        const auto open = openRows();
        if (open.empty())
            return;
        const TaskPtr row = open.at(size_t(upTo(int(open.size()) - 1)));
        wanted.remove(row->title());
        if (isRemoved) {
            const ScriptedAlerts alerts({Alert::firstButton});
            TaskManager::deleteTasks({row}, {});
            return;
        }
        MVTask copy(row);
        copy.title = u"Title %1"_qs.arg(++last);
        ASSERT_TRUE(TaskManager::saveTaskTemp(copy, true));
        wanted.insert(copy.title);
    }
    /// Makes tasks until it is killed, before or after one of its writes to the calendar, and starts again.
    void makeUntilKilled()
    {
        constexpr int most = 4;
        const int writes = upTo(most - 1);
        quit();
        CalendarEvent::resetEventStore();
        const pid_t child = fork();
        if (child == 0) {
            int left = writes;
            connectMoodyStore()->onWrite = [&left] {
                if (left-- == 0)
                    raise(SIGKILL);
            };
            launch();
            for (int number = 1; number <= most; ++number)
                makeHere(last + number);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it came to its end";
        connectStore();
        launch();
        activate();
        CalendarOutbox::carryOutFor(context(), Seconds(20));
        last += most;
        // What was committed before the kill is there: each task is before its write, which is told twice.
        const QStringList known = titlesOf(openRows());
        for (int number = last - most + 1; number <= last - most + writes / 2 + 1; ++number)
            EXPECT_TRUE(known.contains(u"Title %1"_qs.arg(number)));
        wanted.unite(QSet<QString>(known.begin(), known.end()));
    }
    void activate() { delegate->applicationDidBecomeActive(); }
    static QStringList titlesOf(const std::vector<TaskPtr> &tasks)
    {
        QStringList titles;
        for (const TaskPtr &row : tasks)
            titles.append(row->title());
        titles.sort();
        return titles;
    }
    static QStringList titlesIn(const QString &folder)
    {
        QStringList titles;
        for (const QString &name : QDir(folder).entryList({u"*.ics"_qs}, QDir::Files)) {
            QFile file(folder + u'/' + name);
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            static const QRegularExpression title(u"SUMMARY:([^\r\n]*)"_qs);
            titles.append(title.match(QString::fromUtf8(file.readAll())).captured(1));
        }
        titles.sort();
        return titles;
    }

    QTemporaryDir place;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess server;
    std::mt19937 random;
    int last = 0;
    QSet<QString> wanted;
};

TEST_F(Server, GeneratedEditsOfTwoDevicesEndInAgreement)
{
    if (!isInstalled())
        GTEST_SKIP() << "vdirsyncer or radicale is not installed";
    random.seed(testSeed());
    ASSERT_NO_FATAL_FAILURE(start());
    // It keeps the calendars from being empty all at once, of which the user would be asked.
    write(u"Work"_qs, u"anchor"_qs, u"SUMMARY:Anchor\nDTSTART:20270101T080000Z\nDURATION:PT1H\n"_qs);
    const int rounds = qEnvironmentVariableIsSet("MORVANE_TEST_SEED") ? 8 : 2;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        for (int step = upTo(4); step >= 0; --step)
            step % 2 ? makeOnPhone() : changeOnPhone(step == 4);
        // First what the other device did, so that none of both takes a newer title from the other.
        synchronise();
        synchronise();
        activate();
        for (int step = upTo(4); step >= 0; --step) {
            if (step % 2)
                changeHere(step == 3);
            else {
                makeHere(++last);
                wanted.insert(u"Title %1"_qs.arg(last));
            }
        }
        if (round % 2)
            makeUntilKilled();
        CalendarOutbox::carryOutFor(context(), Seconds(20));
        synchronise();
        synchronise();
        activate();
        QStringList titles(wanted.begin(), wanted.end());
        titles.sort();
        EXPECT_EQ(titlesOf(openRows()), titles);
        EXPECT_EQ(titlesIn(folderOf(u"Home"_qs)), titles);
        EXPECT_EQ(titlesIn(home("phone/home")), titles);
        EXPECT_EQ(titlesIn(home("server/collection-root/me/home")), titles);
    }
    expectSettled();
}

} // namespace
