#pragma once

#include "eventkit/CalendarBackend.h"

/// No calendars at all, and none can be made.
class EmptyBackend : public CalendarBackend
{
public:
    Result<std::vector<EKSource>> sources() override { return std::vector<EKSource>(); }
    Result<std::vector<EKCalendar>> calendars() override { return std::vector<EKCalendar>(); }
    std::optional<QString> defaultCalendar(EKEntityType) override { return std::nullopt; }
    Result<std::vector<CalendarObject>> objects(const QString &) override { return nothing(); }
    Result<std::optional<CalendarObject>> object(const QString &, const QString &) override
    {
        return nothing();
    }
    QByteArray stampOfNames(const QString &) override { return {}; }
    Result<CalendarObject> put(const QString &, const CalendarObject &, const QString &) override
    {
        return nothing();
    }
    OptionalError remove(const QString &, const QString &, const QByteArray &) override { return nothing(); }
    Result<EKCalendar> createCalendar(const EKCalendar &) override { return nothing(); }
    OptionalError updateCalendar(const EKCalendar &) override { return nothing(); }
    OptionalError removeCalendar(const QString &) override { return nothing(); }
    void refresh() override {}
    void setChangedCallback(std::function<void()>) override {}

private:
    static Error nothing();
};
