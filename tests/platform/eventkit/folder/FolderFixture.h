#pragma once

#include "eventkit/EKEventStore.h"
#include "eventkit/FolderBackend.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A calendar "home/work" of files that tests write themselves. The clock stands at noon of the 1st of March
/// 2024.
class FolderFixture : public testing::Test
{
protected:
    FolderFixture() { QDir().mkpath(folder); }

    QString path(const QString &name) const { return folder + u'/' + name; }
    void write(const QString &name, const QByteArray &contents) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << qPrintable(file.fileName());
        file.write(contents);
    }
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList names() const { return QDir(folder).entryList(QDir::Files, QDir::Name); }

    static QByteArray calendarText(const QByteArray &components)
    {
        return "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//Other//EN\n" + components + "END:VCALENDAR\n";
    }
    static QByteArray eventText(const QByteArray &uid, const QByteArray &lines)
    {
        return calendarText("BEGIN:VEVENT\nUID:" + uid + "\n" + lines + "END:VEVENT\n");
    }

    std::vector<EKEvent> events() const
    {
        const auto found = store.eventsMatchingPredicate(
            store.predicateForEventsWithStartDate(localDate(2024, 3, 1), localDate(2024, 4, 1)));
        EXPECT_TRUE(found) << (found ? "" : qPrintable(found.error().message));
        return found ? found.value() : std::vector<EKEvent>();
    }
    QStringList titles() const
    {
        QStringList found;
        for (const EKEvent &event : events())
            found.append(event.title);
        return found;
    }
    void save(EKEvent &event, EKSpan span = EKSpan::ThisEvent)
    {
        const auto error = store.saveEvent(event, span, true);
        EXPECT_FALSE(error) << qPrintable(error->message);
    }

    QTemporaryDir temporary;
    const QString root = temporary.path();
    const QString folder = root + u"/home/work"_qs;
    FrozenClock clock{localDate(2024, 3, 1, 12)};
    std::shared_ptr<FolderBackend> backend = std::make_shared<FolderBackend>(root);
    EKEventStore store{backend};
};
