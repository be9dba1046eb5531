#pragma once

#include "eventkit/CalendarError.h"
#include "eventkit/FolderBackend.h"

#include <QStringList>

/// A tree of calendars with accounts that know their user, calendars that may only be read, and moods.
class MoodyBackend : public CalendarBackend
{
public:
    explicit MoodyBackend(const QString &root)
        : tree(root)
    {}

    QStringList readOnlyTitles;
    QStringList ownerAddresses;
    bool refusesReading = false;
    bool refusesWriting = false;
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
        return tree.put(calendar, object, uid);
    }
    OptionalError remove(const QString &calendar, const QString &name, const QByteArray &etag) override
    {
        return refusesWriting ? refusal() : tree.remove(calendar, name, etag);
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
    static Error refusal() { return CalendarError::make(CalendarError::Storage, QStringLiteral("not now")); }

    FolderBackend tree;
};
