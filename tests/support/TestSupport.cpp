#include "support/TestSupport.h"

#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Log.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>

unsigned testSeed()
{
    const testing::TestInfo *test = testing::UnitTest::GetInstance()->current_test_info();
    if (test && !std::strstr(test->name(), "Generated") && !std::strstr(test->test_suite_name(), "Generated"))
        ADD_FAILURE() << "A test of generated cases says \"Generated\" in its name";
    constexpr unsigned usualSeed = 1;
    bool isSet = false;
    const unsigned set = qEnvironmentVariable("MORVANE_TEST_SEED").toUInt(&isSet);
    return isSet ? set : usualSeed;
}

Date localDate(int year, int month, int day, int hour, int minute, int second)
{
    return Calendar::current().dateFromComponents(
        {.year = year, .month = month, .day = day, .hour = hour, .minute = minute, .second = second});
}

Date utcDate(int year, int month, int day, int hour, int minute, int second)
{
    using namespace std::chrono;
    const auto date = std::chrono::year(year) / month / day;
    const auto moment = sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
    return Date::fromUnixSeconds(static_cast<double>(moment.time_since_epoch().count()));
}

QString wallClock(Date date)
{
    return DateFormatter::string(date, QStringLiteral("yyyy-MM-dd HH:mm:ss xx"));
}

FrozenClock::FrozenClock(Date moment)
{
    Clock::setSource([moment] { return moment; });
}

FrozenClock::~FrozenClock()
{
    Clock::setSource({});
}

LogCapture::LogCapture()
    : captured(std::make_shared<QStringList>())
{
    Log::setSink([lines = captured](const QString &line) { lines->append(line); });
}

LogCapture::~LogCapture()
{
    Log::setSink({});
}

class ScriptedAlerts::Script : public AlertPresenter
{
public:
    explicit Script(std::deque<int> scripted)
        : answers(std::move(scripted))
    {}

    int present(const AlertQuestion &question) override
    {
        asked.push_back(question);
        if (answers.empty()) {
            ADD_FAILURE() << "Nobody answers the alert " << qPrintable(question.message);
            return Alert::firstButton;
        }
        const int answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::vector<AlertQuestion> asked;

private:
    std::deque<int> answers;
};

ScriptedAlerts::ScriptedAlerts(std::deque<int> answers)
    : script(std::make_shared<Script>(std::move(answers)))
{
    Alert::setPresenter(script);
}

ScriptedAlerts::~ScriptedAlerts()
{
    Alert::setPresenter(nullptr);
}

const std::vector<AlertQuestion> &ScriptedAlerts::asked() const
{
    return script->asked;
}

void PrintTo(const Date &date, std::ostream *stream)
{
    *stream << qPrintable(wallClock(date)) << " (" << std::to_string(date.referenceSeconds()) << ")";
}

void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << '"' << text.toStdString() << '"';
}
