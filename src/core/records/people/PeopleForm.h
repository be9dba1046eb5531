#pragma once

#include "records/FormModel.h"
#include "records/FormPicture.h"
#include "records/people/DetailItems.h"
#include "records/people/DetailRows.h"
#include "records/people/MissingField.h"
#include "records/people/PhotoEdit.h"
#include "store/queries/DBWorker.h"

#include <map>

/// What the forms of contacts and companies have in common: a picture, telephones, addresses, mails and web
/// addresses, and how an edit is kept, follows the store and is saved. Nothing reaches the store before it is
/// saved.
class PeopleForm : public FormModel, public FormPicture
{
public:
    enum Row {
        Picture = 1,
        FirstName,
        LastName,
        Title,
        JobTitle,
        Company,
        Details,
        FirstSeparator,
        Phones,
        Addresses,
        Emails,
        Urls,
        SecondSeparator,
        Birthday,
        Projects,
        Contacts,
        Offers
    };

    // The lists of entries. `FormModel::items` gives one of them as a form shows it.
    DetailItems detailItems;
    PhotoEdit photo;

    /// Stores the record in one step that can be taken back, and sees to the files of the picture. Without a
    /// name nothing is done, and the answer says where the focus goes; a stored record that never had one
    /// needs none. One that was deleted meanwhile is stored anew.
    MissingField clickButtonSave();

    // The rows that both kinds have. Own ones are told by the kind.
    QString label(int row) const override;
    QString text(int row) const override;
    bool isShownInPreview(int row) const override;
    FormItems *items(int row) override;
    FormPicture *picture() override { return this; }
    bool canSave() const override;
    QString reasonNotToSave() const override;
    bool isTouched() const override { return touched; }
    bool isChanged() override;
    bool save() override { return clickButtonSave() == MissingField::None; }
    void giveUp() override;
    void rollback() override;
    void followRow() override;
    QString formerText(int row) const override { return formerlyKept(row); }
    QString kept(int row) const override;
    QString formerlyKept(int row) const override;
    void resumeRow(int row, const QString &value) override;
    void resumeRowSince(int row, const QString &value, const QString &formerValue) override;

    Portrait portrait() const override { return {photo.photoName(), initials()}; }
    QByteArray data() const override { return photo.pictureData(); }
    QByteArray unsaved() const override { return photo.newPicture(); }
    bool hasPicture() const override { return !photo.photoName().isEmpty(); }
    bool setPicture(const QByteArray &png) override;
    void removePicture() override;
    void setPictureAwaited(bool isAwaited) override;

protected:
    PeopleForm();

    // What a kind says.
    /// The form of the stored record as it is now.
    virtual std::unique_ptr<PeopleForm> fresh() const = 0;
    /// Takes over all values of another form of the kind.
    virtual void takeValues(const PeopleForm &other) = 0;
    virtual QString initials() const = 0;
    virtual bool isNamed() const = 0;
    /// Where the focus goes if it is not.
    virtual MissingField missingName() const = 0;
    /// What the user does by saving, for the undo menu; a key of the words.
    virtual QString stepName(bool isNew) const = 0;
    virtual void insertRow() = 0;
    /// Writes everything but the lists of entries.
    virtual void writeValues() = 0;
    virtual void storeItems() = 0;
    /// Whether a row links several records, which are kept as their URIs.
    virtual bool isLinks(int row) const = 0;

    /// To be called at the end of the constructor: the form is in step with its record.
    void settle();
    void edit(const std::function<void()> &change);
    bool isStored() const { return record() && !isNewRow; }

    /// The rows of the lists.
    static FormRow itemsRow(int row);
    static FormRow pictureRow();

    // Records in a form that can be kept.
    static QString uriOf(const ObjectPtr &record);
    template <typename Entity>
    static QString urisOf(const std::vector<std::shared_ptr<Entity>> &records);
    template <typename Entity>
    static std::shared_ptr<Entity> recordOf(const QString &uri);
    template <typename Entity>
    static std::vector<std::shared_ptr<Entity>> recordsOf(const QString &uris);

private:
    static std::optional<DetailKind> kindOf(int row);
    bool mustStoreAnew() const;
    QString keptPicture() const;
    void resumePicture(const QString &value);
    /// What becomes of a row that this side has changed from `former` to `mine`, and another one to
    /// `present`.
    QString mergedRow(int row, const QString &mine, const QString &former, const QString &present) const;
    /// Both sides have changed a row; answers whether this one shows something else now.
    bool merge(int row, const QString &former, const QString &present);

    std::map<int, std::unique_ptr<DetailRows>> lists;
    /// What the record said when the form was last in step with it; nothing for a new one.
    std::map<int, QString> former;
    /// A picture without a file, as a draft keeps it.
    QString encodedPicture;
    bool wasNamed = false;
    bool touched = false;
    bool isPictureAwaited = false;
    /// The row was made by this form, and no commit has reached the disk since.
    bool isNewRow = false;
    /// The row has values that could not be committed.
    bool isUncommitted = false;
};

template <typename Entity>
QString PeopleForm::urisOf(const std::vector<std::shared_ptr<Entity>> &records)
{
    QStringList uris;
    for (const auto &record : records)
        uris.append(uriOf(record));
    // The order of a set says nothing.
    uris.sort();
    return uris.join(u' ');
}

template <typename Entity>
std::shared_ptr<Entity> PeopleForm::recordOf(const QString &uri)
{
    return std::dynamic_pointer_cast<Entity>(DBWorker::getObjectFromId(uri));
}

template <typename Entity>
std::vector<std::shared_ptr<Entity>> PeopleForm::recordsOf(const QString &uris)
{
    std::vector<std::shared_ptr<Entity>> records;
    for (const QString &uri : uris.split(u' ', Qt::SkipEmptyParts)) {
        if (auto record = recordOf<Entity>(uri))
            records.push_back(std::move(record));
    }
    return records;
}
