#pragma once

#include "DesktopDaemon.h"
#include "Waiting.h"
#include "eventkit/CalendarError.h"
#include "eventkit/eds/EdsBackend.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

/// A calendar of the daemon with nothing in it, and two programs that use it. It and whatever else a test
/// makes is removed afterwards.
class EdsFixture : public testing::Test
{
protected:
    EdsFixture();
    ~EdsFixture() override;

    static QByteArray calendarText(const QByteArray &components);
    static QByteArray eventText(const QByteArray &uid, const QByteArray &lines);
    /// A plain event of an hour.
    static QByteArray plainEvent(const QByteArray &uid);

    static CalendarObject put(EdsBackend &program, const QString &calendarIdentifier,
                              const CalendarObject &object);
    /// All texts of a calendar by name; nothing if they cannot be read.
    static QMap<QString, CalendarObject> objects(EdsBackend &program, const QString &calendarIdentifier);
    static std::optional<EKCalendar> calendarOf(EdsBackend &program, const QString &calendarIdentifier);
    static int errorOf(const Result<std::vector<CalendarObject>> &objects);
    /// Long enough for all that the daemon tells to have arrived.
    static void letNewsArrive();

    const QStringList before = DesktopDaemon::sources();
    EdsBackend backend;
    EdsBackend other;
    QString calendar;
    int changes = 0;
};
