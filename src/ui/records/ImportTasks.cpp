#include "records/ImportTasks.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "records/DocumentsFolder.h"
#include "records/exchange/RecordTable.h"
#include "records/exchange/TaskImport.h"
#include "records/people/ContactCards.h"
#include "widgets/LongWork.h"

#include <QBuffer>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

static bool hasSuffix(const QString &path, const QStringList &suffixes)
{
    return suffixes.contains(QFileInfo(path).suffix().toLower());
}

/// A file of vCards, or a table of people.
static bool isOfPeople(const QString &path)
{
    if (!hasSuffix(path, {u"csv"_s}) || !QFileInfo(path).isFile())
        return ContactCards::isFileOfCards(path);
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && RecordTable::kindOf(file) == RecordTable::Kind::People;
}

void ImportTasks::run(QWidget &window, const FilesOpener &openPeople)
{
    auto *dialog = new QFileDialog(&window, localized(u"Import"_s), documentsFolder());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters({localized(u"Calendar files and tables"_s) +
                                u" (*.ics *.ICS *.ical *.csv *.CSV "_s + ContactCards::patternsOfFiles() +
                                u')',
                            localized(u"All files"_s) + u" (*)"_s});
    QObject::connect(dialog, &QFileDialog::filesSelected, dialog,
                     [openPeople](const QStringList &paths) { openFiles(paths, openPeople); });
    dialog->open();
}

/// Other things than files, such as pipes, may keep their reader waiting for ever.
static void addPath(TaskImport &import, const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    QFile file(path);
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile())
        import.addUnreadable(name, localized(u"it is no file"_s));
    else if (!file.open(QIODevice::ReadOnly))
        import.addUnreadable(name, file.errorString());
    else
        import.addFile(file, name);
}

void ImportTasks::openFiles(const QStringList &paths, const FilesOpener &openPeople)
{
    QStringList people;
    QStringList others;
    for (const QString &path : paths)
        (isOfPeople(path) ? people : others).append(path);
    if (!people.isEmpty())
        openPeople(people);
    if (others.isEmpty())
        return;
    TaskImportAccount account;
    {
        TaskImport import;
        for (const QString &path : others)
            addPath(import, path);
        LongWork work(import.count(), localized(u"Importing the tasks"_s));
        account = import.import([&work] { return work.step(); });
    }
    if (!account.isSaved)
        return;
    const QStringList sentences = account.sentences();
    Alert::run(
        {localized(u"Import"_s), sentences.first(), sentences.mid(1).join(u'\n'), {localized(u"OK"_s)}});
}

bool ImportTasks::openTable(const QString &text, const FilesOpener &openPeople)
{
    QByteArray bytes = text.toUtf8();
    QBuffer table(&bytes);
    table.open(QIODevice::ReadOnly);
    if (RecordTable::kindOf(table) == RecordTable::Kind::Other)
        return false;
    // People are marked in a window of their own, which reads it later.
    static const QTemporaryDir folder;
    QFile file(folder.filePath(localized(u"Clipboard"_s) + u".csv"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return false;
    file.close();
    openFiles({file.fileName()}, openPeople);
    return true;
}

QStringList ImportTasks::filesIn(const QMimeData &data)
{
    QStringList paths;
    for (const QUrl &url : data.urls())
        if (const QString path = url.toLocalFile();
            url.isLocalFile() &&
            (hasSuffix(path, {u"ics"_s, u"ical"_s, u"csv"_s}) || ContactCards::isFileOfCards(path)))
            paths.append(path);
    return paths;
}
