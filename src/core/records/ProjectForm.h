#pragma once

#include "records/FormModel.h"
#include "records/MVProject.h"

#include <map>

/// A project as its window or its pane edits it. Nothing reaches the store before it is saved.
class ProjectForm : public FormModel
{
public:
    enum Row { Title = 1, Category, StatusRow, PriorityRow, StartDate, DueDate, Details, Contacts };

    /// A new project.
    ProjectForm();
    /// One that is stored.
    explicit ProjectForm(const ProjectPtr &project);

    const MVProject &currentProject() const { return values; }

    std::vector<FormRow> rows() const override;
    QString label(int row) const override;
    QString text(int row) const override { return textOf(values, row); }
    FormMark mark(int row) const override;
    void setText(int row, const QString &text) override;
    /// For the contacts, those that can be added.
    std::vector<FormChoice> choices(int row) override;
    int chosen(int row) const override;
    void choose(int row, int place) override;
    std::string_view entityOfChoices(int row) const override;
    std::vector<FormLink> links(int row) const override;
    void unlink(int row, const ObjectPtr &record) override;
    FormDate date(int row) const override;
    DatePickerState openPicker(int row) override;
    void acceptDate(int row, DatePickerState &picker, Date date) override;
    void clear(int row) override;

    std::string_view entity() const override { return EntityProject::entityName; }
    QString title() const override { return text(Title); }
    ObjectPtr record() const override { return values.project(); }
    QString creationText() const override { return createdOn(values.creationDate); }
    bool canSave() const override { return isStored() || !values.title.trimmed().isEmpty(); }
    bool isTouched() const override { return touched; }
    bool isChanged() override;
    /// By the rules of projects, which say what is wrong. A stored project that lost its title gets the one
    /// for want of a better.
    bool save() override;
    void giveUp() override;
    void rollback() override;
    void followRow() override;
    std::vector<std::string_view> belongings() const override { return {"task"}; }
    QString formerText(int row) const override { return textOf(base, row); }
    QString kept(int row) const override { return keptOf(values, row); }
    QString formerlyKept(int row) const override { return keptOf(base, row); }
    void resumeRow(int row, const QString &value) override;
    void resumeRowSince(int row, const QString &value, const QString &formerValue) override;

private:
    static QString textOf(const MVProject &project, int row);
    static QString keptOf(const MVProject &project, int row);
    /// Whether two of them say something else in a row.
    bool differ(const MVProject &one, const MVProject &other) const;
    bool isStored() const { return values.project() && !isNewRow; }
    void edit(const std::function<void()> &change);

    MVProject values;
    /// The row as it was when the values were taken; what a new project begins with before there is one.
    MVProject base;
    /// The records that were offered last.
    std::map<int, std::vector<ObjectPtr>> offered;
    /// Of these there may be very many.
    std::vector<RowId> offeredContacts;
    bool touched = false;
    /// The row was made by this form, and no commit has reached the disk since.
    bool isNewRow = false;
    /// The row has values that could not be committed.
    bool isUncommitted = false;
};
