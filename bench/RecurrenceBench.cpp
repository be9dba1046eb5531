#include "Ratio.h"
#include "eventkit/RecurrenceExpander.h"

#include <QStringList>

#include <random>

#include <libical/ical.h>

namespace {

constexpr int ruleCount = 1000;
constexpr WallClock seriesStart{2024, 1, 8, 9, 30, 0};
/// Rules as calendars hold them: many weekly ones, some with positions, some with an end.
std::vector<QString> assortedRules()
{
    static const QStringList forms = {
        QStringLiteral("FREQ=DAILY;INTERVAL=%1"),
        QStringLiteral("FREQ=WEEKLY;INTERVAL=%1"),
        QStringLiteral("FREQ=WEEKLY;INTERVAL=%1;BYDAY=MO,WE,FR"),
        QStringLiteral("FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR;COUNT=400"),
        QStringLiteral("FREQ=MONTHLY;INTERVAL=%1;BYMONTHDAY=8"),
        QStringLiteral("FREQ=MONTHLY;BYDAY=2MO"),
        QStringLiteral("FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1"),
        QStringLiteral("FREQ=YEARLY"),
        QStringLiteral("FREQ=YEARLY;BYMONTH=3,11;BYDAY=1SU"),
        QStringLiteral("FREQ=DAILY;UNTIL=20250630T090000Z"),
    };
    std::mt19937 random(7);
    std::vector<QString> rules;
    for (int index = 0; index < ruleCount; ++index) {
        const QString &form = forms.at(index % forms.size());
        rules.push_back(form.contains(u'%') ? form.arg(random() % 4 + 1) : form);
    }
    return rules;
}

std::size_t expandBare(icalrecurrencetype rule, icaltimetype first, icaltimetype begin, icaltimetype end,
                       icaltimezone *zone)
{
    std::size_t found = 0;
    icalrecur_iterator *iterator = icalrecur_iterator_new(rule, first);
    if (rule.count == 0)
        icalrecur_iterator_set_start(iterator, begin);
    for (auto time = icalrecur_iterator_next(iterator);
         !icaltime_is_null_time(time) && icaltime_compare(time, end) <= 0;
         time = icalrecur_iterator_next(iterator)) {
        if (icaltime_compare(time, begin) < 0)
            continue;
        benchmark::DoNotOptimize(icaltime_as_timet_with_zone(time, zone));
        ++found;
    }
    icalrecur_iterator_free(iterator);
    return found;
}

/// A year of a thousand series, as instants.
void expandAYear(benchmark::State &state)
{
    const std::vector<QString> texts = assortedRules();
    std::vector<RecurrencePattern> patterns;
    std::vector<icalrecurrencetype> bareRules;
    for (const QString &text : texts) {
        patterns.push_back(*RecurrencePattern::fromText(text));
        bareRules.push_back(icalrecurrencetype_from_string(text.toLatin1().constData()));
    }
    icaltimezone *zone = icaltimezone_get_builtin_timezone("Europe/Berlin");
    const Date from = RecurrenceExpander::instantOf({2025, 1, 1, 0, 0, 0}, Calendar::current());
    const Date to = RecurrenceExpander::instantOf({2025, 12, 31, 23, 59, 59}, Calendar::current());
    std::size_t ours = 0;
    std::size_t bare = 0;
    compare(
        state,
        [&] {
            ours = 0;
            for (const RecurrencePattern &pattern : patterns) {
                const RecurrenceExpander expander(pattern, seriesStart, Calendar::current());
                ours += expander.instances({.from = from, .to = to}).size();
            }
        },
        [&] {
            bare = 0;
            for (const icalrecurrencetype &rule : bareRules)
                bare += expandBare(rule, icaltime_from_string("20240108T093000"),
                                   icaltime_from_string("20250101T000000"),
                                   icaltime_from_string("20251231T235959"), zone);
        });
    state.counters["occurrences"] = static_cast<double>(ours);
    state.counters["bare_occurrences"] = static_cast<double>(bare);
}
BENCHMARK(expandAYear)->MinTime(1)->Unit(benchmark::kMillisecond);

} // namespace
