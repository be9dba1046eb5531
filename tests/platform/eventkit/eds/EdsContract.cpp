#include "../contract/EventStoreContract.h"

#include "DesktopDaemon.h"
#include "eventkit/eds/EdsBackend.h"

/// Calendars of the daemon. Those that a test makes are removed after it.
class EdsUnderTest : public BackendUnderTest
{
public:
    ~EdsUnderTest() override
    {
        for (const QString &uid : DesktopDaemon::sources())
            if (!before.contains(uid))
                DesktopDaemon::removeSource(uid);
    }

    std::shared_ptr<CalendarBackend> open() override { return std::make_shared<EdsBackend>(); }

    EKSource source() override
    {
        const auto sources = open()->sources();
        for (const EKSource &source : sources.value())
            if (source.sourceIdentifier == u"local-stub"_qs)
                return source;
        return {};
    }

    /// The daemon looks whether a calendar may be written to when it opens it.
    void makeReadOnly(const EKCalendar &calendar) override
    {
        const QString file = qEnvironmentVariable("XDG_DATA_HOME") + u"/evolution/calendar/"_qs +
                             calendar.calendarIdentifier + u"/calendar.ics"_qs;
        DesktopDaemon::writeSource(calendar.calendarIdentifier,
                                   u"[Data Source]\nDisplayName="_qs + calendar.title +
                                       u"\nEnabled=true\nParent=local-stub\n\n"
                                       "[Calendar]\nBackendName=local\n\n"
                                       "[Local Backend]\nWritable=false\nCustomFile=file://"_qs +
                                       file + u"\n"_qs);
        DesktopDaemon::kill(DesktopDaemon::Part::Calendars);
    }

    /// Each call goes through the bus.
    int generatedSeries() const override { return 30; }

private:
    const QStringList before = DesktopDaemon::sources();
};

static std::unique_ptr<BackendUnderTest> makeDaemon()
{
    return std::make_unique<EdsUnderTest>();
}

INSTANTIATE_TEST_SUITE_P(Eds, EventStoreContract, testing::Values(makeDaemon));
