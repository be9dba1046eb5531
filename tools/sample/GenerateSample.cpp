// Writes the sample that the start window offers: generate-sample <description> <folder>
// The folder then holds Model11.sqlite and the pictures.

#include "SampleLife.h"

#include "cloud/FileManager.h"
#include "foundation/Clock.h"
#include "foundation/UserDefaults.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/AppDelegate.h"
#include "store/StartWindowController.h"
#include "store/state/SettingsKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

[[noreturn]] static void endFor(const QString &reason)
{
    std::fprintf(stderr, "The sample cannot be made: %s\n", qUtf8Printable(reason));
    std::exit(EXIT_FAILURE);
}

/// Nothing of who builds it gets into it: neither files nor language, zone and clock.
static void leaveThisMachine(const QString &home)
{
    for (const char *folder : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        qputenv(folder, QFile::encodeName(home));
    qputenv("TZ", "UTC");
    qputenv("LC_ALL", "C.UTF-8");
    qunsetenv("LANGUAGE");
}

static void writeStore(const QJsonObject &description, const QString &folder)
{
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, 1);
    AppDelegate delegate;
    StartWindowController::startValueUserDefaults();
    ManagedObjectContext &context = delegate.managedObjectContext();
    // What is written by no user is no step that a user could take back.
    Transaction writing(context, ChangeAuthor::Program);
    const QStringList faults = SampleLife(context, description, folder).write();
    if (!faults.isEmpty())
        endFor(faults.join(u'\n'));
    if (const auto error = writing.commit())
        endFor(error->message);
    while (context.tendSubstringIndexes()) {
    }
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "Usage: generate-sample <description> <folder>\n");
        return 2;
    }
    const QTemporaryDir home;
    leaveThisMachine(home.path());
    const QString folder = QString::fromLocal8Bit(argv[2]);
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!QDir().mkpath(folder) || !file.open(QIODevice::ReadOnly))
        endFor(file.fileName());
    const QJsonObject description = QJsonDocument::fromJson(file.readAll()).object();
    const QDate day = QDate::fromString(description.value(u"firstDay"_s).toString(), Qt::ISODate);
    if (!day.isValid())
        endFor(u"it has no first day"_s);
    Clock::setSource(
        [day] { return Date::fromUnixSeconds(double(day.startOfDay(Qt::UTC).toSecsSinceEpoch())); });
    writeStore(description, folder);
    const QString made = folder + u"/Model11.sqlite"_s;
    QFile::remove(made);
    if (!QFile::copy(FileManager::appFolderURL() + u"/Model11.sqlite"_s, made))
        endFor(made);
    return EXIT_SUCCESS;
}
