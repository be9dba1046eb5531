#pragma once

#include "records/FormModel.h"
#include "records/people/MVNote.h"
#include "records/people/MissingField.h"

using NotePtr = std::shared_ptr<EntityNote>;

/// A note as its window or its pane edits it. Nothing reaches the store before it is saved.
class NoteForm : public FormModel
{
public:
    enum Row { Title = 1, Details, Contact, Company };

    /// A new note.
    NoteForm() = default;
    /// One that is stored.
    explicit NoteForm(const NotePtr &note);

    MVNote values;

    /// Stores the note, a new one as made now, and commits. Without a title a new note is not stored, and the
    /// answer says where the focus goes; a stored one keeps its title. After a save that failed, the next one
    /// stores the same note.
    MissingField clickButtonSave();
    /// The stored row; null until it was saved.
    const NotePtr &note() const { return row; }

    std::vector<FormRow> rows() const override;
    QString label(int row) const override;
    QString text(int row) const override;
    void setText(int row, const QString &text) override;
    /// All contacts, or companies, below "None".
    std::vector<FormChoice> choices(int row) override;
    int chosen(int row) const override;
    void choose(int row, int place) override;
    ObjectPtr chosenRecord(int row) const override;
    std::string_view entityOfChoices(int row) const override;
    void clear(int row) override;

    std::string_view entity() const override { return EntityNote::entityName; }
    ObjectPtr record() const override { return row; }
    QString formerText(int number) const override { return textOf(base, number); }
    QString kept(int number) const override { return keptOf(values, number); }
    QString formerlyKept(int number) const override { return keptOf(base, number); }
    void resumeRow(int number, const QString &value) override;
    QString creationText() const override { return createdOn(values.creationDate); }
    bool canSave() const override { return isStored() || !values.title.trimmed().isEmpty(); }
    bool isTouched() const override { return touched; }
    bool isChanged() override;
    bool save() override { return clickButtonSave() == MissingField::None; }
    void giveUp() override;
    void rollback() override;
    void followRow() override;

private:
    static MVNote valuesOf(const EntityNote &note);
    static QString textOf(const MVNote &note, int number);
    static QString keptOf(const MVNote &note, int number);
    bool isStored() const { return row && !isNewRow; }
    void edit(const std::function<void()> &change);

    NotePtr row;
    /// The row as it was when the values were taken.
    MVNote base;
    std::vector<RowId> offeredContacts;
    std::vector<CompanyPtr> offeredCompanies;
    bool touched = false;
    /// The row was made by this form, and no commit has reached the disk since.
    bool isNewRow = false;
    /// The row has values that could not be committed.
    bool isUncommitted = false;
};
