#include "records/people/PeopleForm.h"

#include "calendarsync/RecordsTransaction.h"
#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "store/entities/MainContext.h"

using namespace Qt::Literals::StringLiterals;

constexpr std::array listRows = {
    std::pair{PeopleForm::Phones, DetailKind::Phone}, std::pair{PeopleForm::Addresses, DetailKind::Address},
    std::pair{PeopleForm::Emails, DetailKind::Email}, std::pair{PeopleForm::Urls, DetailKind::Url}};

PeopleForm::PeopleForm()
{
    for (const auto &[row, kind] : listRows)
        lists[row] =
            std::make_unique<DetailRows>(detailItems, kind, [this](const auto &change) { edit(change); });
}

std::optional<DetailKind> PeopleForm::kindOf(int row)
{
    const auto found = std::ranges::find(listRows, row, &std::pair<Row, DetailKind>::first);
    return found == listRows.end() ? std::nullopt : std::optional(found->second);
}

// Rows

FormRow PeopleForm::pictureRow()
{
    return {.id = Picture,
            .editor = FormRow::Editor::Picture,
            .name = u"Title"_s,
            .controlName = u"imageViewAvatar"_s,
            .height = 96};
}

FormRow PeopleForm::itemsRow(int row)
{
    const QString name = row == Phones      ? u"Phones"_s
                         : row == Addresses ? u"Address"_s
                         : row == Emails    ? u"Emails"_s
                                            : u"URLs"_s;
    return {.id = row, .editor = FormRow::Editor::Items, .name = name, .controlName = u"items"_s + name};
}

QString PeopleForm::label(int row) const
{
    switch (row) {
    case Phones:
        return localized(u"Phones"_s);
    case Addresses:
        return localized(u"Address"_s);
    case Emails:
        return localized(u"Emails"_s);
    case Urls:
        return localized(u"URLs"_s);
    default:
        return {};
    }
}

QString PeopleForm::text(int row) const
{
    const auto list = lists.find(row);
    if (list == lists.end())
        return {};
    QStringList entries;
    for (int item = 0; item < list->second->count(); ++item)
        entries.append(list->second->words(item));
    entries.removeAll(QString());
    return entries.join(u'\n');
}

FormItems *PeopleForm::items(int row)
{
    const auto list = lists.find(row);
    return list == lists.end() ? nullptr : list->second.get();
}

/// Somebody without a picture has a name, and room parts what is there.
bool PeopleForm::isShownInPreview(int row) const
{
    const auto hasAny = [this](const std::vector<int> &below) {
        return std::ranges::any_of(below, [this](int one) { return hasValue(one); });
    };
    if (row == FirstSeparator)
        return hasAny({Phones, Addresses, Emails, Urls});
    if (row == SecondSeparator)
        return hasAny({Contacts});
    return row == Picture || FormModel::isShownInPreview(row);
}

void PeopleForm::edit(const std::function<void()> &change)
{
    change();
    touched = true;
    if (changed)
        changed();
}

// The picture

bool PeopleForm::setPicture(const QByteArray &png)
{
    bool isTaken = false;
    edit([&] { isTaken = photo.dropPicture(png); });
    encodedPicture = QString::fromLatin1(photo.newPicture().toBase64());
    return isTaken;
}

void PeopleForm::removePicture()
{
    edit([this] { photo.removePicture(); });
}

void PeopleForm::setPictureAwaited(bool isAwaited)
{
    isPictureAwaited = isAwaited;
    if (changed)
        changed();
}

QString PeopleForm::keptPicture() const
{
    return photo.newPicture().isEmpty() ? photo.photoName() : photo.photoName() + u'\n' + encodedPicture;
}

void PeopleForm::resumePicture(const QString &value)
{
    const qsizetype end = value.indexOf(u'\n');
    if (end < 0)
        photo.choosePicture(value);
    else if (photo.dropPicture(QByteArray::fromBase64(value.mid(end + 1).toLatin1()), value.left(end)))
        encodedPicture = value.mid(end + 1);
}

// What outlives the form

QString PeopleForm::uriOf(const ObjectPtr &record)
{
    return DBWorker::getIdFromObject(record);
}

QString PeopleForm::kept(int row) const
{
    if (const auto kind = kindOf(row))
        return detailItems.kept(*kind);
    return row == Picture ? keptPicture() : QString();
}

QString PeopleForm::formerlyKept(int row) const
{
    const auto found = former.find(row);
    return found == former.end() ? QString() : found->second;
}

void PeopleForm::resumeRow(int row, const QString &value)
{
    edit([&] {
        if (const auto kind = kindOf(row))
            detailItems.take(*kind, value);
        else if (row == Picture)
            resumePicture(value);
    });
}

// The record

void PeopleForm::settle()
{
    for (const FormRow &row : rows())
        former[row.id] = kept(row.id);
    wasNamed = isNamed();
}

bool PeopleForm::canSave() const
{
    return !isPictureAwaited && (isNamed() || (isStored() && !wasNamed));
}

QString PeopleForm::reasonNotToSave() const
{
    return localized(isPictureAwaited ? u"The picture is still being read"_s : u"A name is missing"_s);
}

bool PeopleForm::isChanged()
{
    // Its row has the values of a save that could not be committed, and still waits for it.
    if (isUncommitted && mainContext().hasChanges())
        return true;
    followRow();
    if (isGone())
        return false;
    return std::ranges::any_of(rows(),
                               [this](const FormRow &row) { return kept(row.id) != formerlyKept(row.id); });
}

bool PeopleForm::mustStoreAnew() const
{
    const ObjectPtr stored = record();
    return !stored || !stored->context() || stored->isDeleted();
}

MissingField PeopleForm::clickButtonSave()
{
    if (!isNamed() && (wasNamed || !isStored()))
        return missingName();
    if (const OptionalError error = photo.store()) {
        const QString words = localized(QStringLiteral("Your changes could not be saved"));
        Alert::run({words, words, error->message, {localized(QStringLiteral("OK"))}});
        return MissingField::Store;
    }
    const bool isNew = mustStoreAnew();
    RecordsTransaction transaction(stepName(isNew));
    if (isNew) {
        insertRow();
        giveBelongings(*record());
        isNewRow = true;
    }
    writeValues();
    storeItems();
    isUncommitted = !DBWorker::tellOfFailure(transaction.commit());
    if (isUncommitted) {
        // The rows that were made belong to the lists now, which are stored once more by the next save.
        detailItems = fresh()->detailItems;
        return MissingField::Store;
    }
    photo.finish();
    isNewRow = false;
    rollback();
    return MissingField::None;
}

void PeopleForm::giveUp()
{
    if (!isNewRow || isGone())
        return;
    mainContext().deleteObject(record());
    DBWorker::saveOrTell(DBWorker::Occasion::Program);
}

void PeopleForm::rollback()
{
    const std::unique_ptr<PeopleForm> present = fresh();
    takeValues(*present);
    detailItems = present->detailItems;
    photo = present->photo;
    former = present->former;
    wasNamed = present->wasNamed;
    if (changed)
        changed();
}

QString PeopleForm::mergedRow(int row, const QString &mine, const QString &was, const QString &present) const
{
    if (mine == was)
        return present;
    if (kindOf(row))
        return DetailItems::merged(mine, was, present);
    return isLinks(row) ? mergedUris(mine, was, present) : mine;
}

/// A new record, and one that was deleted since, has nothing that the draft does not have.
void PeopleForm::resumeRowSince(int row, const QString &value, const QString &formerValue)
{
    const bool hasPresent = isStored() && !isGone();
    resumeRow(row, hasPresent ? mergedRow(row, value, formerValue, formerlyKept(row)) : value);
}

bool PeopleForm::merge(int row, const QString &was, const QString &present)
{
    const QString mine = kept(row);
    const QString wanted = mergedRow(row, mine, was, present);
    // A record that is gone has no name any more: the row seems to say what is stored, and still holds it.
    const bool isAlike = wanted == mine && mine == present && mine != was && row != Picture;
    if (wanted == mine && !isAlike)
        return false;
    // A picture from elsewhere replaces none of this edit.
    if (row == Picture)
        photo = PhotoEdit(present);
    else
        resumeRow(row, wanted);
    return true;
}

void PeopleForm::followRow()
{
    if (isGone())
        return;
    const std::unique_ptr<PeopleForm> present = fresh();
    const bool wasTouched = touched;
    bool hasFollowed = false;
    // Told of once, when everything has been taken over.
    const auto tell = std::exchange(changed, nullptr);
    for (const FormRow &row : rows()) {
        const QString now = present->formerlyKept(row.id);
        const QString was = std::exchange(former[row.id], now);
        hasFollowed |= now != was && merge(row.id, was, now);
    }
    changed = tell;
    touched = wasTouched;
    wasNamed = present->wasNamed;
    if (hasFollowed && changed)
        changed();
}
