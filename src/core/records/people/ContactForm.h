#pragma once

#include "records/people/ContactImport.h"
#include "records/people/ContactOffers.h"
#include "records/people/MVContacts.h"
#include "records/people/PeopleForm.h"

/// A contact as a window or a pane edits it.
class ContactForm : public PeopleForm
{
public:
    /// A new contact.
    ContactForm();
    /// One that is stored.
    explicit ContactForm(const ContactPtr &contact);

    MVContacts values;

    /// The stored row; null until a new contact was saved.
    const ContactPtr &contact() const { return row; }

    /// Who has the typed name in the address books; null for a stored contact.
    const ContactOffers *offers() const { return newOffers.get(); }
    /// Puts what an import would make of the card of an offer into the rows that are still empty. What was
    /// typed stays; a name of which the beginning was typed is completed.
    void takeOffer(std::size_t place, const ContactImport::PngMaker &toPng);

    std::vector<FormRow> rows() const override;
    QString label(int number) const override;
    QString text(int number) const override;
    bool isShown(int number) const override;
    FormMark mark(int number) const override;
    void setText(int number, const QString &text) override;
    /// For the projects, those that can be added.
    std::vector<FormChoice> choices(int number) override;
    int chosen(int number) const override;
    void choose(int number, int place) override;
    ObjectPtr chosenRecord(int number) const override { return number == Company ? values.company : nullptr; }
    std::string_view entityOfChoices(int number) const override;
    std::vector<FormLink> links(int number) const override;
    void unlink(int number, const ObjectPtr &record) override;
    FormDate date(int number) const override;
    DatePickerState openPicker(int number) override;
    void acceptDate(int number, DatePickerState &picker, Date date) override;
    void clear(int number) override;

    std::string_view entity() const override { return EntityContacts::entityName; }
    QString title() const override { return values.fullName(); }
    ObjectPtr record() const override { return row; }
    QString kept(int number) const override;
    void resumeRow(int number, const QString &value) override;
    void addToDraft(RecordDraft &draft) const override;
    void takeFromDraft(const RecordDraft &draft) override;
    void followRow() override;

protected:
    std::unique_ptr<PeopleForm> fresh() const override { return std::make_unique<ContactForm>(row); }
    void takeValues(const PeopleForm &other) override;
    QString initials() const override { return Portrait::initialsOf(values.firstName, values.lastName); }
    bool isNamed() const override;
    MissingField missingName() const override { return MissingField::FirstName; }
    QString stepName(bool isNew) const override;
    void insertRow() override;
    void writeValues() override;
    void storeItems() override { detailItems.storeFor(row); }
    bool isLinks(int number) const override { return number == Projects; }
    std::vector<std::string_view> belongings() const override { return {"task", "note"}; }

private:
    void followName();
    void fillName(const CNContact &card);
    void fillChoices(const CNContact &card, const ContactImport &import);
    void fillItems(const CNContact &card, const ContactImport &import);
    void nameCompany(const QString &title);
    void makeCompany();

    ContactPtr row;
    std::unique_ptr<ContactOffers> newOffers;
    /// The title of the company if that is not there yet; empty for none, or one that is there.
    QString newCompany;
    /// The last of the choices of companies, if that is not there yet.
    QString offeredCompany;
    /// The records that were offered last; null for none of them.
    std::map<int, std::vector<ObjectPtr>> offered;
};
