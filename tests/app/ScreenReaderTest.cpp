// The program as a screen reader has it: on a screen that nobody looks at, through the bus.

#include "AccessibilityBus.h"
#include "support/TestSupport.h"
#include "workspace/PlatformConfiguration.h"

#include <QDBusInterface>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A screen without anybody before it.
class Screen
{
public:
    Screen()
    {
        constexpr int patience = 60000;
        server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1280x900x24"_s,
                                 u"-nolisten"_s, u"tcp"_s});
        while (server.state() != QProcess::NotRunning && !server.canReadLine())
            server.waitForReadyRead(patience);
        number = QString::fromLatin1(server.readLine().trimmed());
    }
    ~Screen() { end(server); }
    Q_DISABLE_COPY_MOVE(Screen)

    QString name() const { return number.isEmpty() ? QString() : u":"_s + number; }
    static void end(QProcess &process)
    {
        constexpr int patience = 30000;
        process.terminate();
        if (!process.waitForFinished(patience))
            process.kill();
        process.waitForFinished(patience);
    }

private:
    QProcess server;
    QString number;
};

QString nameOfBus()
{
    return u"org.a11y.Bus"_s;
}

/// Starts the bus of assistive technology, with its files in the folders of the test.
QString startBus()
{
    QDBusInterface session(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s);
    const QMap<QString, QString> folders = {{u"XDG_RUNTIME_DIR"_s, qEnvironmentVariable("XDG_RUNTIME_DIR")}};
    qDBusRegisterMetaType<QMap<QString, QString>>();
    session.call(u"UpdateActivationEnvironment"_s, QVariant::fromValue(folders));
    QDBusInterface accessibility(nameOfBus(), u"/org/a11y/bus"_s, nameOfBus());
    return QDBusReply<QString>(accessibility.call(u"GetAddress"_s)).value();
}

class ScreenReaderTest : public testing::Test
{
protected:
    void SetUp() override
    {
        QDBusInterface session(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                               u"org.freedesktop.DBus"_s);
        const QDBusReply<QStringList> startable = session.call(u"ListActivatableNames"_s);
        if (!startable.value().contains(nameOfBus()))
            GTEST_SKIP() << "at-spi2-core is not installed";
        if (QStandardPaths::findExecutable(u"Xvfb"_s).isEmpty())
            GTEST_SKIP() << "xvfb is not installed";
        screen.emplace();
        ASSERT_FALSE(screen->name().isEmpty()) << "the screen did not start";
        PlatformConfiguration::setText(u"calendarStore"_s, u"folder"_s);
        PlatformConfiguration::setAuthorization(u"events"_s, 0);
        reader.emplace(startBus());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DISPLAY"_s, screen->name());
        environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
        // It is the program itself that opens the way.
        environment.remove(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s);
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.start(QStringLiteral(MORVANE_PROGRAM), QStringList());
        ASSERT_TRUE(program.waitForStarted(-1));
        // The first thing that a new user hears.
        reader->press(reader->find(u"push button"_s, u"Don't Allow"_s));
    }
    void TearDown() override
    {
        if (program.state() == QProcess::NotRunning)
            return;
        Screen::end(program);
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    }

    std::optional<Element> row(const QString &name) { return reader->find(u"check box"_s, name); }
    void pressButton(const QString &name) { reader->press(reader->find(u"push button"_s, name)); }
    void pressInSidebar(const QString &name) { reader->press(reader->find(u"list item"_s, name)); }
    /// It is open already where an earlier start has left it so.
    void openTasks()
    {
        EXPECT_TRUE(reader->find(u"list item"_s, u"Tasks"_s));
        if (isGoneNow(u"list item"_s, u"Inbox"_s))
            pressInSidebar(u"Tasks"_s);
    }
    void goBack()
    {
        pressButton(u"Back"_s);
        EXPECT_TRUE(isGone(u"push button"_s, u"Back"_s));
    }
    bool isGoneNow(const QString &role, const QString &name)
    {
        const auto isMeant = [&](const Element &element) {
            return reader->roleOf(element) == role && reader->nameOf(element).startsWith(name) &&
                   reader->is(element, AccessibilityBus::Showing);
        };
        return std::ranges::none_of(reader->programs(), [&](const Element &root) {
            return reader->lookFor(root, isMeant).has_value();
        });
    }
    bool isGone(const QString &role, const QString &name)
    {
        return AccessibilityBus::waitFor([&] { return isGoneNow(role, name); });
    }
    void writeDown(const QString &title)
    {
        pressButton(u"New Task"_s);
        ASSERT_TRUE(reader->find(u"dialog"_s, u"New Task"_s));
        reader->type(reader->find(u"text"_s, u"Title"_s), title);
        pressButton(u"Save"_s);
        EXPECT_TRUE(isGone(u"dialog"_s, u"New Task"_s));
    }

    std::optional<Screen> screen;
    std::optional<AccessibilityBus> reader;
    QProcess program;
};

} // namespace

TEST_F(ScreenReaderTest, ADayIsRunWithoutALookAtTheScreen)
{
    openTasks();
    for (const QString &title : {u"Buy tea"_s, u"Call Grandma"_s})
        writeDown(title);
    EXPECT_TRUE(row(u"Buy tea"_s));

    // It is found by its words, and moved.
    reader->type(reader->find(u"text"_s, u"Search"_s), u"grandma"_s);
    EXPECT_TRUE(reader->hearsSentence(u"1 result"_s));
    reader->press(reader->find(u"list item"_s, u"Call Grandma"_s));
    goBack();
    auto grandma = row(u"Call Grandma"_s);
    ASSERT_TRUE(grandma);
    reader->act(grandma, u"SetFocus"_s);
    EXPECT_TRUE(AccessibilityBus::waitFor([&] { return reader->is(*grandma, AccessibilityBus::Selected); }));
    const int place = reader->placeOf(*grandma);
    reader->act(grandma, place == 0 ? u"Move down"_s : u"Move up"_s);
    EXPECT_TRUE(AccessibilityBus::waitFor([&] { return reader->placeOf(*grandma) == 1 - place; }))
        << "the same row, at another place";

    // It gets a date.
    reader->press(grandma);
    pressButton(u"Edit"_s);
    pressButton(u"Due Date, None"_s);
    const auto bubble = reader->find(u"dialog"_s, u"Edit Due Date"_s);
    ASSERT_TRUE(bubble);
    const auto today = reader->lookFor(*bubble, [&](const Element &element) {
        return reader->roleOf(element) == u"cell"_s && reader->descriptionOf(element) == u"Today"_s;
    });
    reader->press(today);
    reader->press(reader->find(u"push button"_s, u"Done"_s, bubble));
    EXPECT_TRUE(isGone(u"dialog"_s, u"Edit Due Date"_s));
    EXPECT_TRUE(isGone(u"push button"_s, u"Due Date, None"_s));
    pressButton(u"Done"_s);
    EXPECT_TRUE(reader->find(u"push button"_s, u"Edit"_s));
    goBack();
    grandma = row(u"Call Grandma, Due Today"_s);
    ASSERT_TRUE(grandma);

    // It is done, heard, and leaves.
    EXPECT_FALSE(reader->is(*grandma, AccessibilityBus::Checked));
    reader->act(grandma, u"Toggle"_s);
    EXPECT_TRUE(reader->hearsState(*grandma, u"checked"_s, true));
    EXPECT_TRUE(isGone(u"check box"_s, u"Call Grandma"_s));
    pressInSidebar(u"Done"_s);
    const auto done = row(u"Call Grandma"_s);
    ASSERT_TRUE(done);
    EXPECT_TRUE(reader->is(*done, AccessibilityBus::Checked));
}

TEST_F(ScreenReaderTest, EveryControlOfEveryScreenHasANameARoleAndAnAction)
{
    const auto expectFaultless = [this](const QString &where) {
        EXPECT_EQ(reader->faults().join(u'\n'), QString()) << qPrintable(where);
    };
    openTasks();
    writeDown(u"Buy tea"_s);
    for (const QString &screenName : {u"Home"_s, u"Inbox"_s, u"Today"_s, u"Scheduled"_s, u"Someday"_s,
                                      u"Categories"_s, u"Delegated"_s, u"Not Done"_s, u"Done"_s}) {
        pressInSidebar(screenName);
        EXPECT_TRUE(reader->find(u"heading"_s, screenName));
        expectFaultless(screenName);
    }
    pressInSidebar(u"Inbox"_s);
    reader->press(row(u"Buy tea"_s));
    pressButton(u"Edit"_s);
    pressButton(u"Due Date"_s);
    EXPECT_TRUE(reader->find(u"dialog"_s, u"Edit Due Date"_s));
    expectFaultless(u"form and bubble"_s);
    pressButton(u"Cancel"_s);
    EXPECT_TRUE(isGone(u"dialog"_s, u"Edit Due Date"_s));
    for (const auto &[command, window] :
         {std::pair(u"Preferences"_s, u"Preferences"_s), std::pair(u"Calendars…"_s, u"Calendars"_s)}) {
        reader->press(reader->find(u"menu item"_s, command));
        EXPECT_TRUE(reader->find(u"dialog"_s, window));
        expectFaultless(window);
    }
}
