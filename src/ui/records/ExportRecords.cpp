#include "records/ExportRecords.h"

#include "foundation/Alert.h"
#include "foundation/Csv.h"
#include "foundation/Localization.h"
#include "records/DocumentsFolder.h"
#include "records/exchange/RecordExport.h"
#include "widgets/LongWork.h"

#include <QBuffer>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QSaveFile>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

static void tellOfFailedExport(const QString &path, const QString &reason)
{
    const QString title = localized(u"The file could not be written"_s);
    const QString text =
        localized(u"Nothing was written to \"%1\": %2"_s).arg(QFileInfo(path).fileName(), reason);
    Alert::run({title, title, text, {localized(u"OK"_s)}});
}

static void writeRecords(std::string_view entity, ExportFormat written, const std::vector<RowId> &rows,
                         const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return tellOfFailedExport(path, file.errorString());
    LongWork work(rows.size(), localized(u"Exporting"_s));
    bool isWanted = true;
    const auto step = [&] { return isWanted = work.step(); };
    if (const auto error = RecordExport::write(file, written, entity, rows, step))
        return tellOfFailedExport(path, error->message);
    if (!isWanted)
        return file.cancelWriting();
    // A failed `commit` no longer knows why.
    if (!file.flush() || !file.commit())
        return tellOfFailedExport(path, file.errorString());
    const QString leftOut = RecordExport::wordsOnWhatIsLeftOut(written, entity, rows);
    if (!leftOut.isEmpty())
        Alert::run({localized(u"Export"_s), leftOut, {}, {localized(u"OK"_s)}});
}

/// Which rows are meant; none if the user gives it up.
static std::vector<RowId> rowsToExport(const ExportRecords::Offer &offer)
{
    if (offer.selected.empty() || offer.selected.size() >= offer.all.size())
        return offer.all;
    const QString title = localized(u"Export"_s);
    const int answer =
        Alert::run({title,
                    title,
                    localized(u"%1 of %2 are selected."_s).arg(offer.selected.size()).arg(offer.all.size()),
                    {localized(u"All"_s), localized(u"Selected"_s), localized(u"Cancel"_s)}});
    if (answer == Alert::firstButton)
        return offer.all;
    return answer == Alert::secondButton ? offer.selected : std::vector<RowId>();
}

/// That of the name of a file, or else that which is chosen in the dialog.
static ExportFormat formatOf(const QString &path, const QString &filter,
                             const std::vector<ExportFormat> &formats)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    const auto named = std::ranges::find(formats, suffix, exportformat::suffixOf);
    const auto chosen = std::ranges::find(formats, filter, exportformat::filterOf);
    return named != formats.end() ? *named : chosen != formats.end() ? *chosen : formats.front();
}

/// The name of the file decides its format, so it goes along when the user chooses another one.
static void followFilter(QFileDialog &dialog, const QString &suffix)
{
    dialog.setDefaultSuffix(suffix);
    const QStringList files = dialog.selectedFiles();
    if (files.size() == 1 && !QFileInfo(files.front()).isDir())
        dialog.selectFile(QFileInfo(files.front()).completeBaseName() + u'.' + suffix);
}

void ExportRecords::run(const Offer &offer, QWidget &window)
{
    const std::vector<RowId> rows = rowsToExport(offer);
    if (rows.empty() || offer.formats.empty())
        return;
    auto *dialog = new QFileDialog(&window, localized(u"Export"_s), documentsFolder());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const ExportFormat offered : offer.formats)
        filters << exportformat::filterOf(offered);
    dialog->setNameFilters(filters);
    const QString suffix = exportformat::suffixOf(offer.formats.front());
    dialog->setDefaultSuffix(suffix);
    QString name = offer.name;
    dialog->selectFile(name.replace(u'/', u'-') + u'.' + suffix);
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog,
                     [dialog, formats = offer.formats](const QString &filter) {
                         followFilter(*dialog, exportformat::suffixOf(formatOf({}, filter, formats)));
                     });
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, [dialog, offer, rows](const QString &path) {
        writeRecords(offer.entity, formatOf(path, dialog->selectedNameFilter(), offer.formats), rows, path);
    });
    dialog->open();
}

std::unique_ptr<QMimeData> ExportRecords::table(const Offer &offer)
{
    const std::vector<RowId> &rows = offer.selected.empty() ? offer.all : offer.selected;
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    LongWork work(rows.size(), localized(u"Exporting"_s));
    bool isWanted = true;
    const auto step = [&] { return isWanted = work.step(); };
    if (RecordExport::write(file, ExportFormat::Csv, offer.entity, rows, step) || !isWanted)
        return nullptr;
    file.seek(0);
    QByteArray text;
    CsvReader reader(file);
    while (const auto record = reader.next())
        text += Csv::line(record->fields, u'\t');
    auto data = std::make_unique<QMimeData>();
    data->setText(QString::fromUtf8(text));
    data->setData(u"text/csv"_s, file.data());
    return data;
}
