#include "eventkit/AlarmComponents.h"

#include "eventkit/IcalTime.h"

#include <algorithm>
#include <cmath>

namespace {

std::optional<EKAlarm> alarmOf(const IcalComponent &component, double lengthInSeconds)
{
    const QByteArray action = component.value("ACTION").trimmed().toUpper();
    const ContentLine *trigger = component.line("TRIGGER");
    if (component.name() != "VALARM" || !trigger || (action != "DISPLAY" && action != "AUDIO"))
        return std::nullopt;
    if (const auto time = IcalTime::fromText(trigger->value()))
        return EKAlarm::alarmWithAbsoluteDate(time->instant());
    const auto duration = IcalDuration::fromText(trigger->value());
    if (!duration)
        return std::nullopt;
    const bool isFromEnd = trigger->parameter("RELATED").toUpper() == "END";
    return EKAlarm::alarmWithRelativeOffset(double(duration->totalSeconds()) +
                                            (isFromEnd ? lengthInSeconds : 0));
}

ContentLine triggerLine(const EKAlarm &alarm, const QByteArray &lineEnd)
{
    if (!alarm.absoluteDate()) {
        constexpr double most = 2e9;
        const int seconds = static_cast<int>(std::lround(std::clamp(alarm.relativeOffset(), -most, most)));
        return ContentLine::make("TRIGGER", IcalDuration::text(seconds), lineEnd);
    }
    const IcalTime utc = IcalTime::of(*alarm.absoluteDate(), {.form = IcalTime::Form::Utc});
    return ContentLine::make("TRIGGER;VALUE=DATE-TIME", utc.text(), lineEnd);
}

IcalComponent componentOf(const EKAlarm &alarm, const IcalComponent &owner)
{
    IcalComponent component("VALARM", owner.lineEnd());
    component.setValue("ACTION", "DISPLAY");
    const QByteArray title = owner.value("SUMMARY");
    component.setValue("DESCRIPTION", title.isEmpty() ? QByteArrayLiteral("Reminder") : title);
    component.addLine(triggerLine(alarm, owner.lineEnd()));
    return component;
}

} // namespace

std::vector<EKAlarm> AlarmComponents::read(const IcalComponent &component, double lengthInSeconds)
{
    std::vector<EKAlarm> alarms;
    for (const IcalComponent *child : component.children())
        if (const auto alarm = alarmOf(*child, lengthInSeconds))
            alarms.push_back(*alarm);
    return alarms;
}

void AlarmComponents::write(IcalComponent &component, const std::vector<EKAlarm> &alarms,
                            double lengthInSeconds)
{
    std::vector<const IcalComponent *> present;
    for (const IcalComponent *child : component.children())
        if (alarmOf(*child, lengthInSeconds))
            present.push_back(child);
    std::vector<IcalComponent> wanted;
    for (const EKAlarm &alarm : alarms) {
        const auto same = std::find_if(present.begin(), present.end(), [&](const IcalComponent *child) {
            return alarmOf(*child, lengthInSeconds) == alarm;
        });
        if (same == present.end()) {
            wanted.push_back(componentOf(alarm, component));
            continue;
        }
        wanted.push_back(**same);
        present.erase(same);
    }
    component.replaceChildren(
        [&](const IcalComponent &child) { return alarmOf(child, lengthInSeconds).has_value(); }, wanted);
}
