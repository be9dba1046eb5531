#include "records/DraftKeeper.h"

#include "cloud/FileManager.h"
#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/PrivateFiles.h"
#include "records/FormModel.h"
#include "store/queries/DBWorker.h"

#include <QDir>
#include <QUuid>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

/// After the last key press.
constexpr auto shortPause = std::chrono::milliseconds(300);
/// Of somebody who types without a pause.
constexpr auto longestWait = std::chrono::milliseconds(2000);

static std::vector<DraftKeeper *> &keepers()
{
    static std::vector<DraftKeeper *> all;
    return all;
}

DraftKeeper::DraftKeeper(const FormModel &formToKeep)
    : form(formToKeep)
{
    keepers().push_back(this);
    pause.setInterval(shortPause);
    longest.setInterval(longestWait);
    for (QTimer *timer : {&pause, &longest}) {
        timer->setSingleShot(true);
        timer->callOnTimeout([this] { write(); });
    }
}

DraftKeeper::~DraftKeeper()
{
    std::erase(keepers(), this);
}

void DraftKeeper::formChanged()
{
    pause.start();
    if (!longest.isActive())
        longest.start();
}

void DraftKeeper::write()
{
    pause.stop();
    longest.stop();
    const QByteArray contents = form.encodedDraft();
    if (contents.isEmpty())
        return drop();
    if (contents == written)
        return;
    if (path.isEmpty()) {
        PrivateFiles::makeFolder(Drafts::folder());
        path = Drafts::folder() + u'/' + QUuid::createUuid().toString(QUuid::WithoutBraces) + u".draft"_s;
    }
    // The text still stands in its form: nobody is interrupted for a file that could not be written.
    if (const OptionalError error = writeFileAtomically(path, contents))
        Log::line(u"A draft could not be written: %1"_s.arg(error->message));
    else
        written = contents;
}

void DraftKeeper::drop()
{
    pause.stop();
    longest.stop();
    written.clear();
    if (!path.isEmpty())
        QFile::remove(std::exchange(path, {}));
}

void DraftKeeper::finish()
{
    if (pause.isActive())
        write();
}

void DraftKeeper::finishAll()
{
    for (DraftKeeper *keeper : keepers())
        keeper->finish();
}

// Drafts of earlier runs

QString Drafts::folder()
{
    return FileManager::appFolderURL() + u"/Drafts"_s;
}

/// Under a name that is still free.
static QString putAside(const QString &file)
{
    QString aside = file + u".aside"_s;
    for (int number = 2; QFile::exists(aside); ++number)
        aside = u"%1.%2.aside"_s.arg(file).arg(number);
    return QFile::rename(file, aside) ? aside : file;
}

static QByteArray contentsOf(const QString &file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

std::optional<Drafts::Found> Drafts::read(const QString &file)
{
    const auto decoded = TaskDraft::decoded(contentsOf(file));
    if (const auto *draft = std::get_if<TaskDraft>(&decoded))
        return Found{file, *draft};
    return std::nullopt;
}

std::optional<RecordDraft> Drafts::readRecord(const QString &file)
{
    return RecordDraft::decoded(contentsOf(file));
}

/// Whether a draft is of the sample; absent if it cannot be read.
static std::optional<bool> isOfSample(const QString &file)
{
    if (const auto task = Drafts::read(file))
        return task->draft.isOfSample;
    const auto record = Drafts::readRecord(file);
    return record ? std::optional(record->isOfSample) : std::nullopt;
}

Drafts::Leftovers Drafts::find()
{
    Leftovers leftovers;
    for (const QFileInfo &info :
         QDir(folder()).entryInfoList({u"*.draft"_s}, QDir::Files, QDir::Time | QDir::Reversed)) {
        const std::optional<bool> isSample = isOfSample(info.filePath());
        if (!isSample)
            leftovers.putAside.append(putAside(info.filePath()));
        else if (*isSample == DBWorker::isSample())
            leftovers.drafts.append(info.filePath());
    }
    return leftovers;
}
