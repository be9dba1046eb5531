#include "VCardSteps.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

using Values = std::vector<CNLabeledValue<QString>>;

CNContact read(const QByteArray &lines, const QByteArray &version = "3.0")
{
    return contactOf(card(lines, version));
}

QString name(const QByteArray &lines)
{
    const CNContact contact = read(lines);
    return contact.givenName + u'|' + contact.familyName + u'|' + contact.organizationName;
}

TEST(VCardContactTest, TakesItsNamesFromWhereTheyAre)
{
    EXPECT_EQ(name("FN:Dr. Ann Lee\r\nN:Lee;Ann;Maria;Dr.;"), u"Ann|Lee|"_qs);
    EXPECT_EQ(name("FN:Ann Maria Lee"), u"Ann Maria|Lee|"_qs);
    EXPECT_EQ(name("FN:Lee\\, Ann"), u"Ann|Lee|"_qs);
    EXPECT_EQ(name("FN:Ann\r\nN:;;;;"), u"Ann||"_qs);
    EXPECT_EQ(name("N:Lee"), u"|Lee|"_qs);
    EXPECT_EQ(name("N:Ann Lee\r\nFN:Ann Lee"), u"Ann|Lee|"_qs) << "the whole name in one place";
    EXPECT_EQ(name("N:de la Cruz;Ann\r\nFN:Ann de la Cruz"), u"Ann|de la Cruz|"_qs);
    EXPECT_EQ(name("FN:Two\\n lines"), u"Two|lines|"_qs);
    EXPECT_EQ(name("ORG:Works;Tools\r\nFN:Works\r\nN:;;;;"), u"||Works"_qs)
        << "a company has no person's name";
    EXPECT_EQ(name("ORG:;Tools"), u"||Tools"_qs);
    EXPECT_EQ(name("FN:Works Ltd\r\nN:Works Ltd;;;;\r\nX-ABShowAs:COMPANY"), u"||Works Ltd"_qs);
    EXPECT_EQ(name("FN:Works Ltd\r\nKIND:org"), u"||Works Ltd"_qs);
    EXPECT_EQ(name("FN:Friends\r\nKIND:group\r\nMEMBER:urn:uuid:1"), u"||"_qs) << "no contact at all";
    EXPECT_EQ(name("FN:Friends\r\nX-ADDRESSBOOKSERVER-KIND:group"), u"||"_qs);
    EXPECT_EQ(name("TEL:1"), u"||"_qs);
    // Several given names stand between commas; one that has a comma of its own says so, here or in the
    // whole.
    for (const QByteArray given : {"María,José", "María, José"})
        EXPECT_EQ(name("N:García;" + given + ";;;\r\nFN:María José García"), u"María José|García|"_qs);
    EXPECT_EQ(name("N:García;María\\,José;;;\r\nFN:X"), u"María,José|García|"_qs) << "escaped";
    EXPECT_EQ(name("N:Lee, PhD;Ann;;;\r\nFN:Ann Lee, PhD"), u"Ann|Lee, PhD|"_qs);
    EXPECT_EQ(name("FN:A\r\nFN:B\r\nN:C;D\r\nN:E;F"), u"D|C|"_qs) << "the first of two names";
}

/// The words of a card that have no field, a line for each.
QStringList otherWords(const QByteArray &lines)
{
    QStringList words;
    for (const auto &[label, word] : read(lines).otherWords)
        words.append(label + u": "_qs + word);
    return words;
}

TEST(VCardContactTest, TakesNoTitleForAGivenName)
{
    EXPECT_EQ(name("FN:Ann Lee\\, PhD"), u"Ann|Lee|"_qs);
    EXPECT_EQ(name("FN:Ann Lee\\, M.A.\\, Dipl.-Ing."), u"Ann|Lee|"_qs);
    EXPECT_EQ(name("FN:Lee\\, Ann\\, Jr."), u"Ann|Lee|"_qs);
    EXPECT_EQ(name("FN:de la Cruz\\, Ma"), u"Ma|de la Cruz|"_qs) << "a name, and no degree";
    EXPECT_EQ(name("FN:de la Cruz\\, Ann"), u"Ann|de la Cruz|"_qs);
    EXPECT_EQ(otherWords("FN:Ann Lee\\, PhD"), QStringList(u"Full Name: Ann Lee, PhD"_qs));
}

TEST(VCardContactTest, KeepsFurtherNamesInWords)
{
    EXPECT_EQ(otherWords("FN:Ann Lee\r\nFN:Annie Lee\r\nN:Lee;Ann\r\nN:Kay;Ann;;;"),
              QStringList({u"Full Name: Annie Lee"_qs, u"Full Name: Ann Kay"_qs}));
    EXPECT_EQ(otherWords("FN:Ms. Ann M. Lee\\, PhD\r\nN:Lee;Ann;M.;Ms.;PhD"),
              QStringList(u"Full Name: Ms. Ann M. Lee, PhD"_qs))
        << "as the card has it";
    EXPECT_EQ(otherWords("FN:Ann Lee\r\nN:Lee;Ann"), QStringList());
    EXPECT_EQ(otherWords("ORG:Works\r\nFN:Works\r\nN:Lee;Ann;;Dr.;\r\nX-ABShowAs:COMPANY"),
              QStringList(u"Contact: Dr. Ann Lee"_qs));
    EXPECT_EQ(otherWords("ORG:Works\r\nFN:Works\r\nN:Works\r\nKIND:org"), QStringList());
}

TEST(VCardContactTest, KeepsInWordsWhateverElseACardSays)
{
    EXPECT_EQ(otherWords("FN:a\r\nitem1.X-ABDATE:2010-05-06\r\nitem1.X-ABLabel:_$!<Anniversary>!$_\r\n"
                         "X-JABBER:a@b.org\r\nX-AIM;TYPE=HOME:ann\r\nX-PHONETIC-FIRST-NAME:En\r\n"
                         "X-EVOLUTION-MANAGER:Bob\r\nX-KADDRESSBOOK-X-Profession:Rower\r\nGENDER:O;crew\r\n"
                         "item2.X-ABRELATEDNAMES:Jane\r\nitem2.X-ABLabel:_$!<Mother>!$_\r\n"
                         "RELATED;TYPE=friend;VALUE=text:Kay\r\nNICKNAME:Annie\r\n"
                         "X-ANDROID-CUSTOM:vnd.android.cursor.item/relation;Jim;5;;;\r\n"
                         "X-ANDROID-CUSTOM:vnd.android.cursor.item/nickname;Nan;1;;;"),
              QStringList({u"Date: 2010-05-06 (anniversary)"_qs, u"Jabber: a@b.org"_qs, u"AIM: ann"_qs,
                           u"Phonetic First Name: En"_qs, u"Manager: Bob"_qs, u"Profession: Rower"_qs,
                           u"Gender: O, crew"_qs, u"Related: Jane (mother)"_qs, u"Related: Kay (friend)"_qs,
                           u"Nickname: Annie"_qs, u"Related: Jim (father)"_qs, u"Nickname: Nan"_qs}));
    EXPECT_EQ(
        otherWords("FN:a\r\nVERSION:3.0\r\nPRODID:p\r\nREV:1\r\nUID:u\r\nUID:v\r\nKEY;ENCODING=b:AAAA\r\n"
                   "LOGO;ENCODING=b:AAAA\r\nX-EVOLUTION-FILE-AS:a\r\nX-EVOLUTION-WEBDAV-ETAG:e\r\n"
                   "SORT-STRING:a\r\nCLIENTPIDMAP:1;urn:uuid:1\r\nRELATED:urn:uuid:2\r\n"
                   "X-SYNC-MARK:5\r\nX-ABUID:1\r\nX-OTHER;ENCODING=b:AAAA\r\nX-EMPTY: "),
        QStringList())
        << "what is there for programs";
    EXPECT_EQ(otherWords("FN:a\r\nLABEL:1 Main St\\nUlm"), QStringList(u"Address: 1 Main St Ulm"_qs));
    EXPECT_EQ(otherWords("FN:a\r\nADR:;;1 Main St;Ulm\r\nLABEL:1 Main St\\nUlm"), QStringList());
}

TEST(VCardContactTest, CallsPhonesByWhatTheyAre)
{
    const CNContact contact =
        read("TEL;TYPE=HOME,VOICE:1\r\nTEL;TYPE=work:2\r\nTEL;TYPE=iPhone;TYPE=CELL:3\r\nTEL;CELL;HOME:4\r\n"
             "TEL;TYPE=MAIN:5\r\nTEL;TYPE=PREF:6\r\nTEL;TYPE=FAX;TYPE=HOME:7\r\nTEL;TYPE=\"work,fax\":8\r\n"
             "TEL;TYPE=PAGER:9\r\nTEL;TYPE=OTHER:10\r\nTEL;TYPE=VOICE:11\r\nTEL;TYPE=FAX:12\r\nTEL:\r\n"
             "item1.TEL;TYPE=CELL:13\r\nitem1.X-ABLabel:Boat\r\nITEM2.TEL:14\r\nitem2.X-ABLabel:_$!<WorkFAX>!"
             "$_\r\n"
             "TEL;VALUE=uri;TYPE=cell:tel:+1-555-555%205;ext=5555\r\n"
             "TEL;TYPE=car:15\r\nTEL;TYPE=X-Reception,VOICE:16\r\nTEL;TYPE=PREF,car:17");
    const Values expected = {{u"main"_qs, u"6"_qs},      {u"car"_qs, u"17"_qs},
                             {u"home"_qs, u"1"_qs},      {u"work"_qs, u"2"_qs},
                             {u"iPhone"_qs, u"3"_qs},    {u"mobile"_qs, u"4"_qs},
                             {u"main"_qs, u"5"_qs},      {u"home fax"_qs, u"7"_qs},
                             {u"work fax"_qs, u"8"_qs},  {u"pager"_qs, u"9"_qs},
                             {u"other"_qs, u"10"_qs},    {{}, u"11"_qs},
                             {u"fax"_qs, u"12"_qs},      {u"Boat"_qs, u"13"_qs},
                             {u"work fax"_qs, u"14"_qs}, {u"mobile"_qs, u"+1-555-555 5 ext. 5555"_qs},
                             {u"car"_qs, u"15"_qs},      {u"reception"_qs, u"16"_qs}};
    EXPECT_EQ(contact.phoneNumbers, expected);
}

TEST(VCardContactTest, PutsWhatIsPreferredFirst)
{
    const CNContact contact =
        read("EMAIL;PREF=2:b@c.org\r\nEMAIL;TYPE=home:c@c.org\r\nEMAIL;PREF=1:a@c.org\r\n"
             "ORG:Works;Tools\r\nORG:Usines;Outils",
             "4.0");
    QStringList mails;
    for (const auto &one : contact.emailAddresses)
        mails.append(one.value);
    EXPECT_EQ(mails, (QStringList{u"a@c.org"_qs, u"b@c.org"_qs, u"c@c.org"_qs}));
    EXPECT_EQ(contact.organizationName, u"Works"_qs);
    EXPECT_EQ(contact.otherWords, (Values{{u"Department"_qs, u"Tools"_qs},
                                          {u"Company"_qs, u"Usines"_qs},
                                          {u"Department"_qs, u"Outils"_qs}}));
}

TEST(VCardContactTest, TakesAddressesOfAllKinds)
{
    const CNContact contact = read(
        "EMAIL;TYPE=INTERNET,HOME:a@b.org\r\nEMAIL;VALUE=uri:mailto:b%40c.org\r\n"
        "item3.EMAIL:c@d.org\r\nitem3.X-ABLabel:iCloud\r\n"
        "URL;TYPE=WORK:https\\://b.org/?a=b\\;c\r\nitem4.URL:c.org\r\nitem4.X-ABLabel:_$!<HomePage>!$_\r\n"
        "X-SOCIALPROFILE;type=twitter:https://t.org/ann\r\n"
        "ADR;TYPE=HOME:;;1 Main St\\nFloor 2;Ulm;BW;89073;Germany\r\nADR;TYPE=WORK:Box 7;;;Ulm;;;\r\n"
        "ADR:Box 8;Apt 3;2 Main St;;;;\r\nADR:;;;;;;\r\nTITLE:Captain\r\nUID:u1");
    EXPECT_EQ(contact.emailAddresses,
              (Values{{u"home"_qs, u"a@b.org"_qs}, {{}, u"b@c.org"_qs}, {u"iCloud"_qs, u"c@d.org"_qs}}));
    EXPECT_EQ(contact.urlAddresses, (Values{{u"work"_qs, u"https://b.org/?a=b;c"_qs},
                                            {u"homepage"_qs, u"c.org"_qs},
                                            {u"Twitter"_qs, u"https://t.org/ann"_qs}}));
    const std::vector<CNLabeledValue<CNPostalAddress>> addresses = {
        {u"home"_qs, {u"1 Main St\nFloor 2"_qs, {}, u"Ulm"_qs, u"BW"_qs, u"89073"_qs, u"Germany"_qs}},
        {u"work"_qs, {u"Box 7"_qs, {}, u"Ulm"_qs, {}, {}, {}}},
        {{}, {u"2 Main St"_qs, u"Box 8, Apt 3"_qs, {}, {}, {}, {}}}};
    EXPECT_EQ(contact.postalAddresses, addresses);
    EXPECT_EQ(contact.jobTitle, u"Captain"_qs);
    EXPECT_EQ(contact.identifier, u"u1"_qs);
}

TEST(VCardContactTest, UnderstandsBirthdays)
{
    const auto birthday = [](const QByteArray &line) { return read("FN:a\r\nBDAY" + line).birthday; };
    const CNBirthday day{1970, 5, 17};
    const CNBirthday yearly{std::nullopt, 5, 17};
    for (const char *text : {":1970-05-17", ":19700517", ":1970-05-17T00:00:00Z", ";VALUE=date:1970-05-17"})
        EXPECT_EQ(birthday(text), day) << text;
    for (const char *text : {":--0517", ":--05-17", ";X-APPLE-OMIT-YEAR=1604:1604-05-17"})
        EXPECT_EQ(birthday(text), yearly) << text;
    EXPECT_EQ(birthday(":--0229"), (CNBirthday{std::nullopt, 2, 29}));
    for (const char *text : {":", ":1970-02-29", ":1970", ":---17", ";VALUE=text:about 1800", ":0000-00-00"})
        EXPECT_EQ(birthday(text), std::nullopt) << text;
}

TEST(VCardContactTest, FindsItsPictureWhereverItLies)
{
    const QByteArray bytes = "\x89PNG\r\n\x1a\n and more";
    const QByteArray code = bytes.toBase64();
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a face.png"_qs));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) > 0);
    file.close();
    for (const QByteArray &line :
         {"PHOTO;ENCODING=b:" + code, "PHOTO;VALUE=uri:" + QUrl::fromLocalFile(file.fileName()).toEncoded(),
          "PHOTO:data:image/png;base64," + code, "PHOTO:data:image/png\\;base64\\," + code,
          "PHOTO:" + code}) {
        const CNContact contact = read("FN:a\r\n" + line, "4.0");
        EXPECT_EQ(contact.imageData, bytes) << line.constData();
        EXPECT_FALSE(contact.isImageMissing);
    }
    for (const char *line : {"PHOTO:file:///nowhere/face.png", "PHOTO:file:///dev/zero",
                             "PHOTO:data:image/png", "PHOTO;ENCODING=b:!"}) {
        const CNContact contact = read(QByteArray("FN:a\r\n") + line);
        EXPECT_TRUE(contact.imageData.isEmpty() && contact.isImageMissing) << line;
    }
    EXPECT_FALSE(read("FN:a\r\nPHOTO:").isImageMissing);
    const CNContact linked = read("FN:a\r\nPHOTO;VALUE=uri:https://b.org/face.png");
    EXPECT_EQ(linked.imageAddress, u"https://b.org/face.png"_qs);
    EXPECT_FALSE(linked.isImageMissing);
}

} // namespace
