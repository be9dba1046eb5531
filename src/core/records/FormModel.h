#pragma once

#include "eventkit/EKCalendar.h"
#include "records/DatePickerState.h"
#include "records/Portrait.h"
#include "records/RecordDraft.h"
#include "store/entities/Entities.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

class FormItems;
class FormPicture;

/// What stands before a word: nothing, the circle of a colour, of a priority or of a category.
using FormMark = std::variant<std::monostate, EKColor, Priority, CategoryPtr>;

/// A row of a form.
struct FormRow
{
    /// By what its value is edited.
    enum class Editor {
        /// The title of the record: a paragraph that grows, beside the check box of a record that has one.
        Title,
        /// One line.
        Line,
        /// A picture, which shows what the record is called beside it.
        Picture,
        /// A part of what the record is called, in a line beside the picture of the row above.
        Name,
        /// Any number of entries, each with a type and with a link while it is only looked at.
        Items,
        /// Room between the rows above and below.
        Separator,
        /// Paragraphs.
        Text,
        /// One of several words or records.
        Choice,
        /// A day or a moment, picked in a bubble.
        Date,
        /// Any number of records, each in a line from which it is opened; more are added from a pop-up.
        Links,
        /// What the kind of record brings with it.
        Own,
    };

    /// The number by which the model is asked about the row.
    int id;
    Editor editor;
    /// What the row and its control are called among the widgets.
    QString name;
    QString controlName = {};
    /// The least height, in pixels.
    int height = 40;
    /// Whether its value can be cleared.
    bool isClearable = false;
    /// What an empty text field says, and the pop-up that adds a record.
    QString placeholder = {};
    /// What a date picker of the row asks for.
    DatePickerState::Type picker = DatePickerState::Type::StartDate;
    /// Whether what the kind of record brings can be higher than the row, and is the same in both modes.
    bool isTall = false;
};

/// One of the choices of a row.
struct FormChoice
{
    QString text;
    FormMark mark = {};
    /// A line that cannot be chosen.
    bool isHeading = false;
};

/// One of the records that a row links.
struct FormLink
{
    ObjectPtr record;
    QString text;
    /// Of a record that has one.
    std::optional<Portrait> portrait = {};
    bool operator==(const FormLink &) const = default;
};

/// What a date row shows.
struct FormDate
{
    OptionalDate date;
    bool hasTime = false;
    /// It says that the record is due some day instead of a date.
    bool isSomeday = false;
};

/// A record while it is edited in a form: which rows there are, what each says, what may be put into it, and
/// how an edit ends. A form, a pane and a window know of a kind of record only what stands here. Rows are
/// named by their numbers; a row is asked only what its editor needs. Main thread only.
class FormModel
{
public:
    FormModel() = default;
    virtual ~FormModel() = default;
    Q_DISABLE_COPY_MOVE(FormModel)

    /// Called after each change of what the rows say, by the user or from elsewhere.
    std::function<void()> changed;
    /// The picker of a row is to open, since another row asks for its date.
    std::function<void(int row)> pickerWanted;

    /// All rows in their order, the same for the life of the form.
    virtual std::vector<FormRow> rows() const = 0;

    // What a row says.
    /// The word beside it; empty for none.
    virtual QString label(int row) const = 0;
    /// The value: the text itself, or what is chosen in words. Empty without one.
    virtual QString text(int row) const = 0;
    virtual FormMark mark(int row) const;
    virtual bool hasValue(int row) const { return !text(row).isEmpty(); }
    /// Whether it is there while the record is edited.
    virtual bool isShown(int row) const;
    /// Whether it is there while the record is looked at; without a value it has nothing to say.
    virtual bool isShownInPreview(int row) const { return isShown(row) && hasValue(row); }
    /// Whether the value can be looked at only, also while the record is edited.
    virtual bool isGiven(int row) const;
    virtual bool isEnabled(int row) const;
    /// Why the value cannot stay; empty if it can.
    virtual QString error(int row) const;

    // What is put into a row.
    virtual void setText(int row, const QString &text);
    /// What a choice offers now.
    virtual std::vector<FormChoice> choices(int row);
    /// The place of the chosen one among those that `choices` gave last; -1 if it is none of them.
    virtual int chosen(int row) const;
    virtual void choose(int row, int place);
    /// The record that is chosen, which has a pane of its own; null for a choice of anything else.
    virtual ObjectPtr chosenRecord(int row) const;
    /// The entity whose records are offered, so that the choices change with them; empty for none.
    virtual std::string_view entityOfChoices(int row) const;
    /// The linked records in their order; `choices` has those that can be added.
    virtual std::vector<FormLink> links(int row) const;
    virtual void unlink(int row, const ObjectPtr &record);
    /// The entries of a row; null for a row that has none. They live as long as the form.
    virtual FormItems *items(int row);
    /// The picture of the record; null for a kind that has none. It lives as long as the form.
    virtual FormPicture *picture();
    virtual FormDate date(int row) const;
    /// What a bubble is to show; it stays closed unless `showPopover` is set.
    virtual DatePickerState openPicker(int row);
    virtual void acceptDate(int row, DatePickerState &picker, Date date);
    virtual void toggleCheck(int row, DatePickerState &picker, bool isChecked);
    virtual void clear(int row);

    /// Whether records of this kind have a check box beside the title.
    virtual bool hasCheckBox() const { return false; }
    /// Whether it is ticked; absent where this record cannot be ticked off.
    virtual std::optional<bool> isTicked() const { return std::nullopt; }

    // The record.
    /// The entity of the record.
    virtual std::string_view entity() const = 0;
    /// What it is called.
    virtual QString title() const { return text(rows().front().id); }
    /// The stored record; null as long as a new one was not saved.
    virtual ObjectPtr record() const = 0;
    /// When it was made, in words; empty if nobody knows.
    virtual QString creationText() const { return {}; }
    /// Whether the record lets itself be changed at all.
    virtual bool allowsEditing() const { return true; }
    /// Whether it can be edited now.
    virtual bool canEdit() const { return allowsEditing(); }
    /// Whether what stands in the form can be saved.
    virtual bool canSave() const = 0;
    /// Whether the user has put anything into the form of a new record that would be missed.
    virtual bool isTouched() const = 0;
    /// Whether the form of a stored record says something else than the record.
    virtual bool isChanged() = 0;
    /// The same, of a form that was read once and that nobody has edited since.
    virtual bool isDifferent() { return isChanged(); }
    /// Stores the record by its rules. False if they stopped it, with a message; what was typed stays.
    virtual bool save() = 0;

    /// The user does not want the new record, which may wait in the store since a save that failed.
    virtual void giveUp() {}

    enum class EditEnd { Unchanged, Saved, Removed, Refused, Gone };
    /// Ends the edit of a stored record: saves if something changed, or was not stored the last time. Gone if
    /// another program has deleted what the record stands for, and the record with it: the form still has
    /// what was typed.
    virtual EditEnd finishEdit();
    /// Whether the stored record was deleted, here or elsewhere.
    virtual bool isGone() const;
    /// Reads everything from the record again.
    virtual void rollback() = 0;
    /// Takes over what has changed in the record since the edit began; what the user has changed stays.
    virtual void followRow() {}

    /// The words for `creationText` of a moment; empty for none.
    static QString createdOn(OptionalDate date);

    /// Why what stands in the form cannot be saved, in a sentence.
    virtual QString reasonNotToSave() const;

    /// What a text row of the record said when the form was last in step with it; empty for a new record.
    virtual QString formerText(int row) const = 0;

    // What outlives the form.
    /// The value of a row as a draft keeps it: the text itself, or what the form has for another value, such
    /// as the URI of a chosen record. Of a row that is no text, nothing is kept unless a form says more here.
    virtual QString kept(int row) const;
    /// The same of the record, when the form was last in step with it.
    virtual QString formerlyKept(int row) const { return formerText(row); }
    /// Puts in what `kept` gave. A value that there is no more leaves the row as it is.
    virtual void resumeRow(int row, const QString &value) { setText(row, value); }
    /// The same of a stored record, which may have changed since it said `formerValue`: a row of several
    /// entries gets what the record and the draft have added, other rows what was typed.
    virtual void resumeRowSince(int row, const QString &value, const QString &formerValue);
    /// What would be lost with the form, as the text of a file; empty if nothing was edited. It has all rows,
    /// since another device can delete the record.
    virtual QByteArray encodedDraft() const;
    /// Adds what stands in no row to a draft that says something, and takes it from there.
    virtual void addToDraft(RecordDraft &) const {}
    virtual void takeFromDraft(const RecordDraft &) {}
    /// Notes what belongs to the stored record and stands in no row, so that a draft has it. To be called
    /// when an edit begins, and when the record has changed.
    void noteBelongings();
    /// Puts in what an earlier form was left with. In a record that is still there, rows that were not edited
    /// stay as they are.
    void resume(const RecordDraft &draft);

protected:
    /// The relationships to many that stand in no row: tasks of a contact, for example. A record that is
    /// deleted elsewhere while it is edited, and stored anew, has what they held.
    virtual std::vector<std::string_view> belongings() const { return {}; }
    /// What belonged to the record that a draft was left of, and belongs to no other since.
    std::vector<ObjectPtr> belongingsLeft(std::string_view relationship) const;
    /// Gives all of that to a record that was stored anew.
    void giveBelongings(ManagedObject &record) const;

    /// What becomes of URIs between blanks that one side has changed from `former` to `mine` and another one
    /// to `present`: what each has added and taken out holds.
    static QString mergedUris(const QString &mine, const QString &former, const QString &present);

private:
    /// Their URIs by relationship, with blanks between them.
    QMap<QString, QString> noted;
};
