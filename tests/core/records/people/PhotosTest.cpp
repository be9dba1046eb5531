#include "CoreTest.h"

#include "cloud/IcloudManager.h"
#include "records/people/CompanyForm.h"
#include "records/people/ContactForm.h"
#include "records/people/ContactRemoval.h"
#include "records/people/LoosePictures.h"
#include "support/FullDisk.h"

namespace {

/// A picture of its own for each word.
QByteArray png(const QByteArray &word)
{
    return "\x89PNG\r\n\x1a\n" + word;
}

/// The frozen moment of all tests as a name.
const QString nameOfNow = u"21-11-2026 09:15:00.png"_qs;

class Photos : public CoreTest
{
protected:
    static ContactPtr contactWith(const QByteArray &picture)
    {
        ContactForm form;
        form.values.firstName = u"Ann"_qs;
        form.photo.dropPicture(picture);
        form.clickButtonSave();
        return form.contact();
    }
    static QStringList files() { return IcloudManager::listImageName(); }
    static QByteArray picture(const EntityContacts &contact)
    {
        return IcloudManager::imageData(contact.photoName());
    }
};

TEST_F(Photos, AreNamedByTheMomentAndSharedIfTheyAreTheSame)
{
    const ContactPtr first = contactWith(png("face"));
    EXPECT_EQ(first->photoName(), nameOfNow);
    EXPECT_EQ(picture(*first), png("face"));
    const FrozenClock later(localDate(2026, 11, 21, 9, 16));
    const ContactPtr second = contactWith(png("face"));
    EXPECT_EQ(second->photoName(), nameOfNow);
    EXPECT_EQ(files(), QStringList(nameOfNow));
    const ContactPtr other = contactWith(png("faces"));
    EXPECT_EQ(other->photoName(), u"21-11-2026 09:16:00.png"_qs);
    EXPECT_EQ(files().size(), 2);
}

TEST_F(Photos, ThatCannotBeWrittenKeepTheEditOpen)
{
    const ContactPtr ann = contactWith(png("face"));
    ContactForm form(ann);
    form.values.lastName = u"Lee"_qs;
    form.photo.dropPicture(png(QByteArray(5000, 'x')));
    {
        const FullDisk disk(10);
        const ScriptedAlerts told({Alert::firstButton});
        EXPECT_EQ(form.clickButtonSave(), MissingField::Store);
        EXPECT_EQ(told.asked().size(), 1u);
    }
    EXPECT_EQ(picture(*ann), png("face"));
    EXPECT_EQ(form.clickButtonSave(), MissingField::None);
    EXPECT_EQ(picture(*ann), png(QByteArray(5000, 'x')));
    EXPECT_EQ(ann->lastName(), u"Lee"_qs);
}

TEST_F(Photos, NeverStandInEachOthersPlace)
{
    const ContactPtr first = contactWith(png("face"));
    const ContactPtr second = contactWith(png("another"));
    EXPECT_EQ(second->photoName(), u"21-11-2026 09:15:00 2.png"_qs);
    EXPECT_EQ(picture(*first), png("face"));
    PhotoEdit edit;
    for (const QString &taken : {u"../x.png"_qs, nameOfNow})
        EXPECT_TRUE(edit.dropPicture(png("third"), taken) && edit.photoName().startsWith(u"21-11-2026"_qs) &&
                    edit.photoName() != nameOfNow);
}

TEST_F(Photos, AreWrittenOnlyWhenTheRecordIsSaved)
{
    ContactForm form;
    form.photo.dropPicture(png("face"));
    EXPECT_EQ(form.photo.photoName(), nameOfNow);
    EXPECT_EQ(form.photo.pictureData(), png("face"));
    EXPECT_EQ(form.clickButtonSave(), MissingField::FirstName);
    EXPECT_EQ(files(), QStringList());
    form.photo.removePicture();
    EXPECT_FALSE(form.photo.photoName().isNull());
    EXPECT_EQ(form.photo.pictureData(), QByteArray());
    form.values.firstName = u"Ann"_qs;
    form.clickButtonSave();
    EXPECT_EQ(files(), QStringList());
    EXPECT_EQ(form.contact()->photoName(), QString());
}

TEST_F(Photos, ComeBackWithUndo)
{
    const ContactPtr ann = contactWith(png("face"));
    ContactForm edit(ann);
    EXPECT_EQ(edit.photo.pictureData(), png("face"));
    const FrozenClock later(localDate(2026, 11, 21, 10));
    edit.photo.dropPicture(png("new face"));
    edit.clickButtonSave();
    EXPECT_EQ(picture(*ann), png("new face"));
    ContactForm removal(ann);
    removal.photo.removePicture();
    removal.clickButtonSave();
    EXPECT_EQ(picture(*ann), QByteArray());
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(picture(*ann), png("new face"));
    ASSERT_FALSE(context().undo());
    EXPECT_EQ(picture(*ann), png("face"));
    ScriptedAlerts alerts({Alert::firstButton});
    const QString identifier = ann->identifier();
    ContactRemoval::remove({ann}, [] {});
    ASSERT_EQ(context().count(EntityContacts::fetchRequest()), 0);
    ASSERT_FALSE(context().undo());
    const auto again = context().fetchFirst<EntityContacts>(EntityContacts::fetchRequest());
    ASSERT_TRUE(again);
    EXPECT_EQ(picture(*again), png("face"));
}

TEST_F(Photos, GoWhenNoUndoReachesThemAndNobodyHoldsThem)
{
    const ContactPtr first = contactWith(png("face"));
    const ContactPtr second = contactWith(png("face"));
    CompanyForm company;
    company.values.title = u"Works"_qs;
    company.photo.dropPicture(png("face"));
    company.clickButtonSave();
    const auto letGo = [](auto form) {
        form->photo.removePicture();
        form->clickButtonSave();
        LoosePictures::sweep();
    };
    const auto daysLater = [](int days) { return localDate(2026, 11, 21, 10) + std::chrono::days(days); };
    letGo(std::make_unique<ContactForm>(first));
    {
        const FrozenClock later(daysLater(100));
        LoosePictures::sweep();
        EXPECT_EQ(files(), QStringList(nameOfNow)) << "a contact and a company hold it";
        letGo(std::make_unique<ContactForm>(second));
    }
    {
        const FrozenClock later(daysLater(200));
        LoosePictures::sweep();
        EXPECT_EQ(files(), QStringList(nameOfNow)) << "a company holds it";
        letGo(std::make_unique<CompanyForm>(company.company()));
    }
    {
        const FrozenClock later(daysLater(280));
        LoosePictures::sweep();
        EXPECT_EQ(files(), QStringList(nameOfNow)) << "undo can bring it back";
    }
    const FrozenClock later(daysLater(300));
    LoosePictures::sweep();
    EXPECT_EQ(files(), QStringList());
}

TEST_F(Photos, StayWhenTheSamePictureIsDroppedAgain)
{
    contactWith(png("face"));
    ContactForm edit(contactWith(png("face")));
    edit.photo.dropPicture(png("face"));
    edit.clickButtonSave();
    EXPECT_EQ(picture(*edit.contact()), png("face"));
}

TEST_F(Photos, OfCompaniesTakeTheSameSteps)
{
    CompanyForm form;
    form.values.title = u"Works"_qs;
    form.photo.dropPicture(png("logo"));
    form.clickButtonSave();
    EXPECT_EQ(form.company()->photoName(), nameOfNow);
}

TEST_F(Photos, DoNoHarmWhenTheirFileIsMissing)
{
    ContactForm form;
    form.values.firstName = u"Ann"_qs;
    form.clickButtonSave();
    form.contact()->setPhotoName(u"../../gone.png"_qs);
    ContactForm edit(form.contact());
    EXPECT_EQ(edit.photo.pictureData(), QByteArray());
    edit.photo.removePicture();
    edit.photo.dropPicture(png("face"));
    edit.clickButtonSave();
    EXPECT_EQ(edit.contact()->photoName(), nameOfNow);
    EXPECT_EQ(ContactForm(edit.contact()).photo.pictureData(), png("face"));
}

/// The name of the file says what is in it.
TEST_F(Photos, AreOfNoOtherFormatThanTheirNameSays)
{
    const ContactPtr ann = contactWith(png("face"));
    ContactForm edit(ann);
    for (const QByteArray &other : {QByteArray(), QByteArray("MM\x00*", 4), QByteArray("<svg/>")})
        EXPECT_FALSE(edit.photo.dropPicture(other));
    edit.clickButtonSave();
    EXPECT_EQ(picture(*ann), png("face"));
    EXPECT_EQ(files(), QStringList(nameOfNow));
}

} // namespace
