#pragma once

#include "records/RecordDraft.h"
#include "records/TaskDraft.h"

#include <QTimer>

#include <vector>

class FormModel;

/// Keeps what stands in a form in a file, from the first change until it is saved or given up. Whatever ends
/// the program in between, the next start finds the text there.
///
/// A keeper that goes without a word leaves its file. Main thread only.
class DraftKeeper
{
public:
    /// `form` has to outlive the keeper.
    explicit DraftKeeper(const FormModel &form);
    ~DraftKeeper();
    Q_DISABLE_COPY_MOVE(DraftKeeper)

    /// The form may hold something else now: the file follows soon, and goes if nothing is changed any more.
    void formChanged();
    /// Brings the file up to date at once.
    void write();
    /// What was typed is saved, or the user does not want it: the file goes.
    void drop();
    /// Goes on with a file that is there.
    void adopt(const QString &file) { path = file; }
    /// The file, or empty as long as there is none.
    const QString &file() const { return path; }

    /// Writes what is still to be written.
    void finish();
    /// The same of all keepers.
    static void finishAll();

private:
    const FormModel &form;
    QTimer pause;
    QTimer longest;
    QString path;
    QByteArray written;
};

/// The drafts of earlier runs. Stateless.
namespace Drafts {

struct Found
{
    QString file;
    TaskDraft draft;
};

/// What a look at the folder gives.
struct Leftovers
{
    /// The files of the store in use, the oldest first.
    QStringList drafts;
    /// Files that could not be read, by the names under which they were put aside.
    QStringList putAside;
};

/// Reads the folder. A file that is damaged or from a newer version of the program gets the suffix ".aside",
/// and is not looked at again.
Leftovers find();

/// Reads the file of a task; absent if it cannot be read, or holds another kind of record.
std::optional<Found> read(const QString &file);
/// The same of any other kind.
std::optional<RecordDraft> readRecord(const QString &file);

/// The folder of the drafts, which may not be there yet.
QString folder();

} // namespace Drafts
