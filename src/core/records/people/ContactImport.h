#pragma once

#include "records/people/ContactImportAccount.h"
#include "records/people/KnownContact.h"
#include "records/people/PresentNames.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <functional>
#include <vector>

/// Puts contacts of address books and vCards into the store. A contact whose first and last name are there
/// already is left as it is, and brings nothing with it, unless no more than the name was known. Nothing is
/// committed here: whoever calls it has a transaction open. Main thread only.
class ContactImport
{
public:
    /// Makes a PNG of a picture of any format; empty for what is no picture.
    using PngMaker = std::function<QByteArray(const QByteArray &image)>;

    explicit ContactImport(PngMaker toPng);

    /// Those who come in belong to a private group; to none for null.
    void setJoinedGroup(std::shared_ptr<EntityContactGroup> group) { joinedGroup = std::move(group); }

    /// Imports one contact with its company, job title, phones, mail, postal and web addresses and its
    /// picture. What no field holds goes into a note of the contact. The new row, or null: the account says
    /// why.
    ContactPtr importContactToDataBase(const CNContact &contact);
    /// Imports a card that names an organization only, as a company with its phones, mail, addresses, picture
    /// and note. Null if there is one of that title that has more than it, which is left as it is.
    CompanyPtr importCompany(const CNContact &contact);
    /// A contact that the user was told is there already: it is compared, and never imported.
    void meet(const CNContact &contact);
    /// Something that could not even be read.
    void refuse(const QString &sentence) { account.refused.append(sentence); }

    /// What has come of all of it. Looks what the contacts that were there lack; to be called once, at the
    /// end.
    ContactImportAccount finish();

    /// The type of a label: its place in the list of labels is that in the table of types. A label that is in
    /// no list may be the title of a type, else it gets the last one; null only without any type.
    std::shared_ptr<EntityPhoneType> phoneTypeWith(const QString &label) const;
    std::shared_ptr<EntityEmailType> emailTypeWith(const QString &label) const;
    std::shared_ptr<EntityAddressType> addressTypeWith(const QString &label) const;
    std::shared_ptr<EntityURLType> urlsTypeWith(const QString &label) const;
    /// The category that a job title names, in English or in the user's language; null for any other job
    /// title, as people are given one of the categories that there are.
    std::shared_ptr<EntityContactCategory> categoryNamed(const QString &title) const;
    /// The day of somebody's birth; absent where its year is not known.
    static OptionalDate birthdayOf(const CNContact &contact);

private:
    CompanyPtr companyNamed(const QString &title);
    void addNote(const ContactPtr &person, const CNNote &values);
    void addNotes(const ContactPtr &person, const CNContact &card, const QStringList &wordsWithoutField);
    template <typename Owner>
    void addDetails(const std::shared_ptr<Owner> &owner, const CNContact &contact);
    template <typename Owner>
    void addPicture(const std::shared_ptr<Owner> &owner, const QString &name, const CNContact &contact);
    std::shared_ptr<EntityContactGroup> groupOfPeople(const QString &title);
    void addLinks(const ContactPtr &person, const CNContact &contact);
    QString freePhotoName();
    /// Details by the labels that no type has.
    QStringList ownLabels(const CNContact &contact) const;
    /// What no field of a contact holds, a line each; the account gets the name.
    QStringList wordsWithoutField(const CNContact &contact, const QString &name, bool hasCategory);
    void meetCompany(const CNContact &contact);
    void tell(const CNContact &card, CardVerdict verdict);
    /// Cards with the rows of those that they name, who were there before.
    using Met = std::vector<std::pair<RowId, CNContact>>;
    void compare(const Met &cards,
                 std::vector<std::optional<KnownContact>> (*known)(const std::vector<RowId> &rows));

    PngMaker pngOf;
    ContactImportAccount account;
    std::vector<std::shared_ptr<EntityPhoneType>> phoneTypes;
    std::vector<std::shared_ptr<EntityEmailType>> emailTypes;
    std::vector<std::shared_ptr<EntityAddressType>> addressTypes;
    std::vector<std::shared_ptr<EntityURLType>> urlTypes;
    std::vector<std::shared_ptr<EntityContactCategory>> categories;
    PresentNames presentNames;
    QHash<QString, CompanyPtr> companies;
    QHash<QString, std::shared_ptr<EntityContactGroup>> groups;
    std::shared_ptr<EntityContactGroup> joinedGroup;
    /// The titles of those whose card has come in.
    QSet<QString> describedCompanies;
    /// What the first card of each name had, of those that came in with this import.
    QHash<QString, KnownContact> newcomers;
    /// What the cards have of contacts and companies that were there before, without pictures.
    Met met;
    Met metCompanies;
    double lastPhotoMoment = 0;
};
