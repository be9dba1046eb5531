#pragma once

#include "eventkit/CalendarError.h"
#include "eventkit/FolderBackend.h"

#include <QStringList>

#include <functional>

/// A tree of calendars with accounts that know their user, calendars that may only be read, and moods.
class MoodyBackend : public CalendarBackend
{
public:
    explicit MoodyBackend(const QString &root)
        : tree(root)
    {}

    /// Called before and after each write.
    std::function<void()> onWrite = [] {};
    QStringList readOnlyTitles;
    QStringList ownerAddresses;
    bool refusesReading = false;
    bool refusesWriting = false;
    /// Gives new events an alarm, as some servers do.
    bool addsAlarms = false;
    /// Answers that many more questions about objects, then refuses.
    int answersLeft = 1000000;

    Result<std::vector<EKSource>> sources() override { return tree.sources(); }
    Result<std::vector<EKCalendar>> calendars() override
    {
        auto found = tree.calendars();
        for (EKCalendar &calendar : found.value()) {
            calendar.ownerAddresses = ownerAddresses;
            if (readOnlyTitles.contains(calendar.title))
                calendar.allowsContentModifications = false;
        }
        return found;
    }
    std::optional<QString> defaultCalendar(EKEntityType type) override { return tree.defaultCalendar(type); }
    Result<std::vector<CalendarObject>> objects(const QString &calendar) override
    {
        if (refusesReading || answersLeft-- <= 0)
            return refusal();
        return tree.objects(calendar);
    }
    Result<std::optional<CalendarObject>> object(const QString &calendar, const QString &name) override
    {
        if (refusesReading || answersLeft-- <= 0)
            return refusal();
        return tree.object(calendar, name);
    }
    QByteArray stampOfNames(const QString &calendar) override { return tree.stampOfNames(calendar); }
    Result<CalendarObject> put(const QString &calendar, const CalendarObject &object,
                               const QString &uid) override
    {
        if (refusesWriting)
            return refusal();
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
        if (refusesWriting)
            return refusal();
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
    static Error refusal() { return CalendarError::make(CalendarError::Storage, QStringLiteral("not now")); }

    FolderBackend tree;
};
