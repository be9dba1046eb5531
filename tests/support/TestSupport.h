#pragma once

#include "foundation/Alert.h"
#include "foundation/Clock.h"
#include "foundation/Date.h"
#include "foundation/UserDefaults.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <iosfwd>
#include <memory>
#include <vector>

/// The seed of all generated cases: the value of `MORVANE_TEST_SEED`, else always the same. A test that asks
/// for it has "Generated" in its name, by which the target `soak` finds it, and fails otherwise.
unsigned testSeed();

/// A wall time in the zone of the process.
Date localDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
/// A UTC time.
Date utcDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
/// "2024-03-31 03:30:00 +0200", in the zone of the process.
QString wallClock(Date date);

/// Stops the clock at a moment for as long as it lives.
class FrozenClock
{
public:
    explicit FrozenClock(Date moment);
    ~FrozenClock();
    FrozenClock(const FrozenClock &) = delete;
    FrozenClock &operator=(const FrozenClock &) = delete;
};

/// Takes the lines of the log for as long as it lives.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const { return *captured; }

private:
    std::shared_ptr<QStringList> captured;
};

/// Answers alerts from a script and keeps what was asked. An alert beyond the script fails the test.
class ScriptedAlerts
{
public:
    explicit ScriptedAlerts(std::deque<int> answers = {});
    ~ScriptedAlerts();
    ScriptedAlerts(const ScriptedAlerts &) = delete;
    ScriptedAlerts &operator=(const ScriptedAlerts &) = delete;

    const std::vector<AlertQuestion> &asked() const;

private:
    class Script;
    std::shared_ptr<Script> script;
};

/// How failures print these values.
void PrintTo(const Date &date, std::ostream *stream);
void PrintTo(const QString &text, std::ostream *stream);
