#include "cloud/IcloudManager.h"
#include "filters/FilterEntries.h"
#include "foundation/Calendar.h"
#include "foundation/Log.h"
#include "foundation/MainLoop.h"
#include "foundation/UserDefaults.h"
#include "records/dates/MTDates.h"
#include "records/dates/MVDate.h"
#include "store/AppDelegate.h"
#include "store/SampleStore.h"
#include "store/StartWindowController.h"
#include "store/entities/MainContext.h"
#include "store/queries/DBWorker.h"
#include "store/state/SettingsKeys.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

// The switch between the user's own store and the sample.

namespace {

using DateChange = std::function<Date(Date)>;

template <typename Record>
using DateColumn = std::pair<OptionalDate (Record::*)() const, void (Record::*)(OptionalDate)>;

template <typename Record>
void changeDates(const std::shared_ptr<Record> &record, std::initializer_list<DateColumn<Record>> columns,
                 const DateChange &change)
{
    for (const auto &[get, set] : columns) {
        if (const OptionalDate date = ((*record).*get)())
            ((*record).*set)(change(*date));
    }
}

/// The dates of tasks and projects by which they stand on lists.
void changeDatesOfAll(const DateChange &change)
{
    for (const TaskPtr &task : DBWorker::allTasks())
        changeDates<EntityTask>(task,
                                {{&EntityTask::startDate, &EntityTask::setStartDate},
                                 {&EntityTask::dueDate, &EntityTask::setDueDate},
                                 {&EntityTask::delegatedSince, &EntityTask::setDelegatedSince},
                                 {&EntityTask::lastAsked, &EntityTask::setLastAsked}},
                                change);
    for (const ProjectPtr &project : DBWorker::allProjects())
        changeDates<EntityProject>(project,
                                   {{&EntityProject::startDate, &EntityProject::setStartDate},
                                    {&EntityProject::dueDate, &EntityProject::setDueDate}},
                                   change);
}

/// The sample was written by clocks that show UTC: what begins at nine begins at nine everywhere.
void takeOverWallClock()
{
    CalendarSettings settings = Calendar::currentSettings();
    settings.zoneIdentifier = "UTC";
    const Calendar written(settings);
    const DateChange change = [&written](Date date) {
        return Calendar::current().dateFromComponents(written.shortComponents(date));
    };
    changeDatesOfAll(change);
    for (const ContactPtr &person : EntityContacts::contacts())
        changeDates<EntityContacts>(person, {{&EntityContacts::birthday, &EntityContacts::setBirthday}},
                                    change);
}

/// Closes the store in use, with the screens that show its records. False if it stays as it is.
bool leaveStore(AppDelegate &delegate)
{
    if (!delegate.mayLeaveStore() || !DBWorker::saveOrTell())
        return false;
    delegate.closeStartWindow();
    return true;
}

void useStore(AppDelegate &delegate, int number)
{
    delegate.closeStore();
    UserDefaults::standard().setObject(settings::valueSwitchDatabase, number);
}

} // namespace

bool StartWindowController::openStarted()
{
    AppDelegate &delegate = *AppDelegate::shared();
    const bool wasSample = DBWorker::isSample();
    if (!leaveStore(delegate))
        return false;
    // A store that is in use already stays open, under the screens that show it.
    if (wasSample)
        useStore(delegate, 0);
    startValueUserDefaults();
    delegate.startMainWindow();
    if (!wasSample)
        return true;
    delegate.changeDataBase();
    // The calendars and alerts, which the sample leaves alone, are caught up with as at an activation.
    if (delegate.isActive())
        delegate.activateSoon();
    return true;
}

bool StartWindowController::openBrowseSample()
{
    AppDelegate &delegate = *AppDelegate::shared();
    if (!leaveStore(delegate))
        return false;
    useStore(delegate, 1);
    filters::seedDefaults();
    UserDefaults::standard().synchronize();
    restoreDatabase();
    copySampleImages();
    {
        Transaction preparing(mainContext(), ChangeAuthor::Program);
        takeOverWallClock();
        makeCorectSmpleDates();
        DBWorker::tellOfFailure(preparing.commit());
    }
    startValueUserDefaults();
    delegate.startMainWindow();
    delegate.changeDataBase();
    return true;
}

void StartWindowController::openMainWindow()
{
    AppDelegate &delegate = *AppDelegate::shared();
    if (!delegate.hasMainWindow()) {
        openStarted();
        return;
    }
    delegate.closeStartWindow();
    delegate.startMainWindow();
}

void StartWindowController::openHelp()
{
    AppDelegate::shared()->openHelp();
}

void StartWindowController::restoreDatabase()
{
    AppDelegate &delegate = *AppDelegate::shared();
    const QString path = delegate.managedObjectContext().path();
    delegate.closeStore();
    SampleStore::putInPlace(path);
}

void StartWindowController::copySampleImages()
{
    for (const QString &path : SampleStore::pictures()) {
        const QString name = QFileInfo(path).fileName();
        if (imageExist(name))
            continue;
        QFile picture(path);
        if (picture.open(QIODevice::ReadOnly))
            IcloudManager::saveImageWithData(picture.readAll(), name);
        else
            Log::line(picture.errorString());
    }
}

void StartWindowController::makeCorectSmpleDates()
{
    const Date today = MVDate::getStartOfDay(MVDate::date());
    const auto open = DBWorker::getSampleNotDoneTask();
    const auto first =
        std::find_if(open.begin(), open.end(), [](const TaskPtr &task) { return task->startDate(); });
    if (first == open.end())
        return;
    const int age = MTDates::daysSinceDate(today, MVDate::getStartOfDay(*(*first)->startDate()));
    if (age > 1)
        changeDatesOfAll(
            [age](Date date) { return MTDates::dateByAddingYears(date, 0, 0, 0, age - 1, 0, 0, 0); });
    DBWorker::saveOrTell();
}

bool StartWindowController::imageExist(const QString &name)
{
    const QStringList present = IcloudManager::listImageURL();
    return std::any_of(present.begin(), present.end(),
                       [&name](const QString &path) { return QFileInfo(path).fileName() == name; });
}

QString StartWindowController::generateRandomString(int length)
{
    constexpr int letters = 26;
    QString text;
    for (int place = 0; place < length; ++place)
        text += QChar(u'a' + QRandomGenerator::global()->bounded(letters));
    return text;
}
