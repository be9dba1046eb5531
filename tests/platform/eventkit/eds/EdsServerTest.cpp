// A calendar of the daemon that lies on a server: what is written here arrives there, and what another device
// writes there arrives here.

#include "EdsFixture.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

namespace {

class EdsServerTest : public EdsFixture
{
protected:
    ~EdsServerTest() override
    {
        server.kill();
        server.waitForFinished();
    }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    static quint16 freePort()
    {
        QTcpServer listener;
        return listener.listen(QHostAddress::LocalHost) ? listener.serverPort() : 0;
    }
    static bool answers(quint16 port)
    {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        return socket.waitForConnected(100);
    }

    void start()
    {
        const quint16 port = freePort();
        collection = place.filePath(u"store/collection-root/me/home"_qs);
        writeFile(collection + u"/.Radicale.props"_qs, R"({"tag": "VCALENDAR"})");
        writeFile(place.filePath(u"rights"_qs), "[all]\nuser: .*\ncollection: .*\npermissions: RrWw\n");
        writeFile(place.filePath(u"conf"_qs),
                  "[server]\nhosts = 127.0.0.1:" + QByteArray::number(port) +
                      "\n[auth]\ntype = none\n[rights]\ntype = from_file\nfile = " +
                      QFile::encodeName(place.filePath(u"rights"_qs)) + "\n[storage]\nfilesystem_folder = " +
                      QFile::encodeName(place.filePath(u"store"_qs)) + "\n");
        server.setStandardOutputFile(QProcess::nullDevice());
        server.setStandardErrorFile(QProcess::nullDevice());
        server.start(u"radicale"_qs, {u"-C"_qs, place.filePath(u"conf"_qs)});
        ASSERT_TRUE(waitUntil([port] { return answers(port); }));
        DesktopDaemon::createSource(remote,
                                    u"[Data Source]\nDisplayName=Server\nEnabled=true\nParent=caldav-stub\n"
                                    "[Calendar]\nBackendName=caldav\nSelected=true\n"
                                    "[Authentication]\nHost=127.0.0.1\nPort=%1\nMethod=none\n"
                                    "[Security]\nMethod=none\n"
                                    "[WebDAV Backend]\nResourcePath=/me/home/\n"
                                    "[Refresh]\nEnabled=false\n"_qs.arg(port));
        ASSERT_TRUE(waitUntil([this] {
            const auto found = calendarOf(backend, remote);
            return found && found->allowsContentModifications;
        }));
    }
    /// All that the server holds, as one text.
    QByteArray onServer() const
    {
        QByteArray all;
        for (const QString &name : QDir(collection).entryList({u"*.ics"_qs}, QDir::Files)) {
            QFile file(collection + u'/' + name);
            if (file.open(QIODevice::ReadOnly))
                all += file.readAll();
        }
        return all.replace("\r\n ", "");
    }
    bool arrives(const QByteArray &text) const
    {
        return waitUntil([&] { return onServer().contains(text); });
    }

    const QString remote = u"on-the-server"_qs;
    QTemporaryDir place;
    QString collection;
    QProcess server;
};

} // namespace

TEST_F(EdsServerTest, BothSidesHaveWhatEitherOfThemWrites)
{
    if (QStandardPaths::findExecutable(u"radicale"_qs).isEmpty())
        GTEST_SKIP() << "radicale is not installed";
    start();
    const CalendarObject series =
        put(backend, remote,
            {{},
             {},
             eventText("series", "SUMMARY:Weekly\nDTSTART:20240304T080000Z\nDTEND:20240304T090000Z\n"
                                 "RRULE:FREQ=WEEKLY;COUNT=5\nX-OWN:kept\n")});
    EXPECT_TRUE(arrives("SUMMARY:Weekly") && onServer().contains("X-OWN:kept"));

    // One occurrence is another, and one is none.
    CalendarObject edited = series;
    edited.text.replace("RRULE:FREQ=WEEKLY;COUNT=5\r\n",
                        "RRULE:FREQ=WEEKLY;COUNT=5\r\nEXDATE:20240311T080000Z\r\n");
    edited.text.replace("END:VCALENDAR", "BEGIN:VEVENT\r\nUID:series\r\nDTSTAMP:20240101T000000Z\r\n"
                                         "RECURRENCE-ID:20240318T080000Z\r\nSUMMARY:Late\r\n"
                                         "DTSTART:20240318T100000Z\r\nDTEND:20240318T110000Z\r\n"
                                         "END:VEVENT\r\nEND:VCALENDAR");
    put(backend, remote, edited);
    EXPECT_TRUE(arrives("SUMMARY:Late"));
    EXPECT_TRUE(onServer().contains("EXDATE") && onServer().contains("X-OWN:kept"));
    EXPECT_EQ(objects(other, remote).size(), 1);

    const CalendarObject gone = put(backend, remote, {{}, {}, plainEvent("gone")});
    ASSERT_TRUE(arrives("UID:gone"));
    EXPECT_FALSE(backend.remove(remote, gone.name, gone.etag));
    EXPECT_TRUE(waitUntil([this] { return !onServer().contains("UID:gone"); }));
    EXPECT_TRUE(onServer().contains("SUMMARY:Weekly")) << "and nothing else went";

    // Another device writes to the server.
    writeFile(collection + u"/theirs.ics"_qs, plainEvent("theirs"));
    backend.refresh();
    EXPECT_TRUE(waitUntil([this] { return objects(backend, remote).size() == 2; }));
    server.kill();
    server.waitForFinished();
    EXPECT_EQ(objects(backend, remote).size(), 2) << "what was read stays while the server is away";
}
