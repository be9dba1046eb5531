#pragma once

#include "records/people/MVCompany.h"
#include "records/people/PeopleForm.h"

/// A company as a window or a pane edits it.
class CompanyForm : public PeopleForm
{
public:
    /// A new company.
    CompanyForm();
    /// One that is stored.
    explicit CompanyForm(const CompanyPtr &company);

    MVCompany values;

    /// The stored row; null until a new company was saved.
    const CompanyPtr &company() const { return row; }

    /// The rows of a stored company have room between their parts.
    std::vector<FormRow> rows() const override;
    QString label(int number) const override;
    QString text(int number) const override;
    void setText(int number, const QString &text) override;
    /// The contacts that can be added.
    std::vector<FormChoice> choices(int number) override;
    void choose(int number, int place) override;
    std::string_view entityOfChoices(int number) const override;
    std::vector<FormLink> links(int number) const override;
    void unlink(int number, const ObjectPtr &record) override;
    void clear(int number) override;

    std::string_view entity() const override { return EntityCompany::entityName; }
    QString title() const override { return values.title; }
    ObjectPtr record() const override { return row; }
    QString kept(int number) const override;
    void resumeRow(int number, const QString &value) override;

protected:
    std::unique_ptr<PeopleForm> fresh() const override { return std::make_unique<CompanyForm>(row); }
    void takeValues(const PeopleForm &other) override;
    QString initials() const override { return Portrait::initialsOf(values.title); }
    bool isNamed() const override { return !values.title.trimmed().isEmpty(); }
    MissingField missingName() const override { return MissingField::Title; }
    QString stepName(bool isNew) const override;
    void insertRow() override;
    void writeValues() override;
    void storeItems() override { detailItems.storeFor(row); }
    bool isLinks(int number) const override { return number == Contacts; }
    std::vector<std::string_view> belongings() const override { return {"task", "note", "contactGroup"}; }

private:
    CompanyPtr row;
    /// Whether it began as a stored one.
    bool isOfPane = false;
    /// The contacts that were offered last.
    std::vector<RowId> offered;
};
