#include "EdsFixture.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

EdsFixture::EdsFixture()
{
    EKCalendar wanted;
    wanted.title = u"Work"_qs;
    wanted.source.sourceIdentifier = u"local-stub"_qs;
    const auto made = backend.createCalendar(wanted);
    EXPECT_TRUE(made) << (made ? "" : qPrintable(made.error().message));
    calendar = made ? made.value().calendarIdentifier : QString();
}

EdsFixture::~EdsFixture()
{
    for (const QString &uid : DesktopDaemon::sources())
        if (!before.contains(uid))
            DesktopDaemon::removeSource(uid);
}

QByteArray EdsFixture::calendarText(const QByteArray &components)
{
    return QByteArray("BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//Other//EN\n" + components + "END:VCALENDAR\n")
        .replace("\n", "\r\n");
}

QByteArray EdsFixture::eventText(const QByteArray &uid, const QByteArray &lines)
{
    return calendarText("BEGIN:VEVENT\nUID:" + uid + "\nDTSTAMP:20240101T000000Z\n" + lines + "END:VEVENT\n");
}

QByteArray EdsFixture::plainEvent(const QByteArray &uid)
{
    return eventText(uid, "SUMMARY:Plain\nDTSTART:20240304T080000Z\nDTEND:20240304T090000Z\n");
}

CalendarObject EdsFixture::put(EdsBackend &program, const QString &calendarIdentifier,
                               const CalendarObject &object)
{
    // The daemon of the calendars can hear of a new one a moment later than the one that keeps their list.
    auto written = program.put(calendarIdentifier, object, {});
    const auto isUnheardOf = [&written] {
        return !written && written.error().message.contains(QLatin1String("No such source"));
    };
    for (int attempt = 0; attempt < 20 && isUnheardOf(); ++attempt) {
        QThread::msleep(100);
        written = program.put(calendarIdentifier, object, {});
    }
    EXPECT_TRUE(written) << (written ? "" : qPrintable(written.error().message));
    return written ? written.value() : CalendarObject();
}

QMap<QString, CalendarObject> EdsFixture::objects(EdsBackend &program, const QString &calendarIdentifier)
{
    const auto found = program.objects(calendarIdentifier);
    EXPECT_TRUE(found) << (found ? "" : qPrintable(found.error().message));
    QMap<QString, CalendarObject> byName;
    if (found)
        for (const CalendarObject &object : found.value())
            byName.insert(object.name, object);
    return byName;
}

std::optional<EKCalendar> EdsFixture::calendarOf(EdsBackend &program, const QString &calendarIdentifier)
{
    const auto found = program.calendars();
    EXPECT_TRUE(found) << (found ? "" : qPrintable(found.error().message));
    if (found)
        for (const EKCalendar &one : found.value())
            if (one.calendarIdentifier == calendarIdentifier)
                return one;
    return std::nullopt;
}

int EdsFixture::errorOf(const Result<std::vector<CalendarObject>> &objects)
{
    return objects ? 0 : objects.error().code;
}

void EdsFixture::letNewsArrive()
{
    QEventLoop loop;
    QTimer::singleShot(700, &loop, &QEventLoop::quit);
    loop.exec();
}
