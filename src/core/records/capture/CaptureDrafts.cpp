#include "records/capture/CaptureDrafts.h"

#include "foundation/AtomicFile.h"
#include "foundation/Log.h"
#include "foundation/PrivateFiles.h"
#include "records/DraftKeeper.h"
#include "store/queries/DBWorker.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto pauseOfTyping = std::chrono::milliseconds(300);
constexpr auto textKey = "text"_L1;
constexpr auto literalKey = "literal"_L1;

std::vector<CaptureDraftKeeper *> &captureKeepers()
{
    static std::vector<CaptureDraftKeeper *> all;
    return all;
}

/// A file that cannot be read gives way, and is kept under another name.
QJsonObject linesIn(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (document.isObject())
        return document.object();
    file.close();
    QFile::rename(path, path + u".aside"_s);
    return {};
}

} // namespace

CaptureDraftKeeper::CaptureDraftKeeper(QString listKey)
    : list(std::move(listKey))
    , path(Drafts::folder() + (DBWorker::isSample() ? u"/sample-lines.json"_s : u"/lines.json"_s))
{
    captureKeepers().push_back(this);
    pause.setSingleShot(true);
    pause.setInterval(pauseOfTyping);
    pause.callOnTimeout([this] { write(); });
    draft = kept();
}

CaptureDraftKeeper::~CaptureDraftKeeper()
{
    if (pause.isActive())
        write();
    std::erase(captureKeepers(), this);
}

void CaptureDraftKeeper::finishAll()
{
    for (CaptureDraftKeeper *keeper : captureKeepers()) {
        if (keeper->pause.isActive())
            keeper->write();
    }
}

CaptureDraft CaptureDraftKeeper::kept() const
{
    // The same list can be on its way out.
    finishAll();
    const QJsonObject line = linesIn(path).value(list).toObject();
    CaptureDraft found{line.value(textKey).toString()};
    for (const QJsonValue &place : line.value(literalKey).toArray())
        found.literal.insert(place.toInt());
    return found;
}

void CaptureDraftKeeper::keep(const CaptureDraft &now)
{
    if (now == draft)
        return;
    draft = now;
    // What was stored as a task must not come back as a line.
    if (draft.text.isEmpty())
        write();
    else if (!pause.isActive())
        pause.start();
}

void CaptureDraftKeeper::write()
{
    pause.stop();
    QJsonObject lines = linesIn(path);
    if (draft.text.isEmpty()) {
        lines.remove(list);
    } else {
        QJsonArray places;
        for (const int place : draft.literal)
            places.append(place);
        lines.insert(list, QJsonObject{{textKey, draft.text}, {literalKey, places}});
    }
    if (lines.isEmpty()) {
        QFile::remove(path);
        return;
    }
    PrivateFiles::makeFolder(QFileInfo(path).path());
    // The text still stands in its field: nobody is interrupted for a file that could not be written.
    if (const OptionalError error = writeFileAtomically(path, QJsonDocument(lines).toJson()))
        Log::line(u"A line could not be kept: %1"_s.arg(error->message));
}
