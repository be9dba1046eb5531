#include "eventkit/CalendarError.h"
#include "eventkit/eds/EdsBackend.h"

#include <gtest/gtest.h>

TEST(NoDaemon, IsNotAnEmptyListOfCalendars)
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    EXPECT_FALSE(EdsBackend::isAvailable());
    EdsBackend backend;
    const auto isStorage = [](const Error &error) { return error.code == CalendarError::Storage; };
    const auto sources = backend.sources();
    ASSERT_FALSE(sources);
    EXPECT_TRUE(isStorage(sources.error())) << qPrintable(sources.error().message);
    const auto calendars = backend.calendars();
    ASSERT_FALSE(calendars);
    EXPECT_TRUE(isStorage(calendars.error()));
    const auto objects = backend.objects(QStringLiteral("system-calendar"));
    ASSERT_FALSE(objects);
    EXPECT_TRUE(isStorage(objects.error()));
    const auto written = backend.put(QStringLiteral("system-calendar"), {{}, {}, "text"}, {});
    ASSERT_FALSE(written);
    EXPECT_TRUE(isStorage(written.error()));
    EXPECT_TRUE(
        CalendarError::is(backend.remove(QStringLiteral("system-calendar"), QStringLiteral("uid"), {}),
                          CalendarError::Storage));
    EXPECT_FALSE(backend.defaultCalendar(EKEntityType::Event));
    backend.setChangedCallback([] {});
    backend.refresh();
}
