#pragma once

#include "eventkit/CalendarError.h"
#include "eventkit/FolderBackend.h"

#include <QStringList>

#include <algorithm>
#include <functional>
#include <optional>

/// A tree of calendars with accounts that know their user, calendars that may only be read, and moods.
class MoodyBackend : public CalendarBackend
{
public:
    explicit MoodyBackend(const QString &root)
        : tree(root)
    {}

    /// Called before and after each write.
    std::function<void()> onWrite = [] {};
    /// By their titles, or where those are shared, as "Account/Title".
    QStringList readOnlyTitles;
    QStringList ownerAddresses;
    /// Calendars whose objects cannot be read at present, by their titles; and such as have gone with all
    /// that is in them.
    QStringList silentTitles;
    QStringList lostTitles;
    /// Cannot even tell which calendars there are.
    bool refusesCalendars = false;
    bool refusesReading = false;
    bool refusesWriting = false;
    /// What the next writes are answered with instead of being done, and how many of them.
    std::optional<CalendarError::Code> answerToWrites;
    int writesAnswered = 1000000;
    /// How often something was to be written.
    int writesTried = 0;
    /// Gives new events an alarm, as some servers do.
    bool addsAlarms = false;
    /// Answers that many more questions about objects, then refuses.
    int answersLeft = 1000000;

    /// The daemon does not answer at all, or does again.
    void setSilent(bool isSilent) { refusesCalendars = refusesReading = refusesWriting = isSilent; }

    Result<std::vector<EKSource>> sources() override { return tree.sources(); }
    Result<std::vector<EKCalendar>> calendars() override
    {
        if (refusesCalendars)
            return refusal();
        auto found = tree.calendars();
        std::erase_if(found.value(),
                      [this](const EKCalendar &calendar) { return lostTitles.contains(calendar.title); });
        for (EKCalendar &calendar : found.value()) {
            calendar.ownerAddresses = ownerAddresses;
            if (readOnlyTitles.contains(calendar.title) ||
                readOnlyTitles.contains(calendar.source.title + u'/' + calendar.title))
                calendar.allowsContentModifications = false;
        }
        return found;
    }
    std::optional<QString> defaultCalendar(EKEntityType type) override { return tree.defaultCalendar(type); }
    Result<std::vector<CalendarObject>> objects(const QString &calendar) override
    {
        if (auto error = refusalToRead(calendar))
            return *error;
        return tree.objects(calendar);
    }
    Result<std::optional<CalendarObject>> object(const QString &calendar, const QString &name) override
    {
        if (auto error = refusalToRead(calendar))
            return *error;
        return tree.object(calendar, name);
    }
    QByteArray stampOfNames(const QString &calendar) override { return tree.stampOfNames(calendar); }
    Result<CalendarObject> put(const QString &calendar, const CalendarObject &object,
                               const QString &uid) override
    {
        if (auto error = refusalToWrite(calendar))
            return *error;
        const Telling telling(onWrite);
        if (!addsAlarms || !object.name.isEmpty() || object.text.contains("BEGIN:VALARM"))
            return tree.put(calendar, object, uid);
        CalendarObject other = object;
        other.text.replace("END:VEVENT", "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT10M\r\nEND:VALARM\r\n"
                                         "END:VEVENT");
        return tree.put(calendar, other, uid);
    }
    OptionalError remove(const QString &calendar, const QString &name, const QByteArray &etag) override
    {
        if (auto error = refusalToWrite(calendar))
            return error;
        const Telling telling(onWrite);
        return tree.remove(calendar, name, etag);
    }
    Result<EKCalendar> createCalendar(const EKCalendar &calendar) override
    {
        return tree.createCalendar(calendar);
    }
    OptionalError updateCalendar(const EKCalendar &calendar) override
    {
        return tree.updateCalendar(calendar);
    }
    OptionalError removeCalendar(const QString &calendar) override { return tree.removeCalendar(calendar); }
    void refresh() override { tree.refresh(); }
    void setChangedCallback(std::function<void()> callback) override
    {
        tree.setChangedCallback(std::move(callback));
    }

private:
    struct Telling
    {
        explicit Telling(const std::function<void()> &toldFunction)
            : told(toldFunction)
        {
            told();
        }
        ~Telling() { told(); }
        const std::function<void()> &told;
    };
    static Error refusal(CalendarError::Code code = CalendarError::Storage)
    {
        return CalendarError::make(code, QStringLiteral("not now"));
    }
    bool isOneOf(const QStringList &titles, const QString &identifier)
    {
        if (titles.isEmpty())
            return false;
        const auto all = tree.calendars();
        return std::ranges::any_of(all.value(), [&](const EKCalendar &calendar) {
            return calendar.calendarIdentifier == identifier && titles.contains(calendar.title);
        });
    }
    OptionalError refusalToRead(const QString &calendar)
    {
        if (isOneOf(lostTitles, calendar))
            return refusal(CalendarError::NotFound);
        const bool isSilent = refusesReading || isOneOf(silentTitles, calendar) || answersLeft-- <= 0;
        return isSilent ? OptionalError(refusal()) : std::nullopt;
    }
    OptionalError refusalToWrite(const QString &calendar)
    {
        ++writesTried;
        if (isOneOf(lostTitles, calendar))
            return refusal(CalendarError::NotFound);
        if (refusesWriting || isOneOf(silentTitles, calendar))
            return refusal();
        return answerToWrites && writesAnswered-- > 0 ? OptionalError(refusal(*answerToWrites))
                                                      : std::nullopt;
    }

    FolderBackend tree;
};
