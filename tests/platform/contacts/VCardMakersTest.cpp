#include "VCardSteps.h"

#include <gtest/gtest.h>

namespace {

// The same person as programs of five kinds write her down.

using Values = std::vector<CNLabeledValue<QString>>;
const QByteArray picture =
    "\x89PNG\r\n\x1a\n, the rest of a small picture that needs more than one line of text";

class VCardMakersTest : public testing::Test
{
protected:
    static void expectZoe(const CNContact &contact)
    {
        EXPECT_EQ(contact.givenName, u"Zoë"_qs);
        EXPECT_EQ(contact.familyName, u"Grün; Weiß"_qs);
        EXPECT_EQ(contact.organizationName, u"Müller, Söhne & Co"_qs);
        EXPECT_EQ(contact.jobTitle, u"Käpt'n"_qs);
        EXPECT_EQ(contact.birthday, (CNBirthday{1984, 2, 29}));
        EXPECT_EQ(contact.imageData, picture);
        EXPECT_EQ(contact.phoneNumbers,
                  (Values{{u"mobile"_qs, u"+49 171 1"_qs}, {u"work fax"_qs, u"0731 2"_qs}}));
        EXPECT_EQ(contact.emailAddresses, (Values{{u"home"_qs, u"zoe@grün.example"_qs}}));
        ASSERT_EQ(contact.postalAddresses.size(), 1u);
        EXPECT_EQ(contact.postalAddresses[0].label, u"work"_qs);
        EXPECT_EQ(
            contact.postalAddresses[0].value,
            (CNPostalAddress{u"Große Gasse 1"_qs, {}, u"Ulm"_qs, u"BW"_qs, u"89073"_qs, u"Österreich"_qs}));
    }
    static QByteArray folded(QByteArray code, const QByteArray &fold)
    {
        for (qsizetype place = 60; place < code.size(); place += 60 + fold.size())
            code.insert(place, fold);
        return code;
    }
};

TEST_F(VCardMakersTest, APhoneThatWritesVersion21InQuotedPrintable)
{
    expectZoe(contactOf("BEGIN:VCARD\r\nVERSION:2.1\r\n"
                        "N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=47=72=C3=BC=6E=5C=3B=20=57=65=69=C3=9F;="
                        "5A=6F=C3=AB;;;\r\n"
                        "FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=5A=6F=C3=AB=20=47=72=C3=BC=6E=5C=\r\n="
                        "3B=20=57=65=69=C3=9F\r\n"
                        "TEL;CELL:+49 171 1\r\nTEL;WORK;FAX:0731 2\r\n"
                        "EMAIL;HOME;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:zoe=40gr=C3=BCn.example\r\n"
                        "ADR;WORK;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:;;=47=72=6F=C3=9F=65=20=47=61=73="
                        "73=65=20=31;=55=6C=6D;=\r\n"
                        "=42=57;89073;=C3=96sterreich\r\n"
                        "ORG;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller, S=C3=B6hne & Co\r\n"
                        "TITLE;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:K=C3=A4pt'n\r\nBDAY:1984-02-29\r\n"
                        "PHOTO;ENCODING=BASE64;PNG:" +
                        folded(picture.toBase64(), "\r\n ") + "\r\n\r\nEND:VCARD\r\n"));
}

TEST_F(VCardMakersTest, AnOfficeThatWritesVersion21InItsOwnCharacterSet)
{
    expectZoe(contactOf(
        "BEGIN:VCARD\r\nVERSION:2.1\r\nX-OFFICE-VERSION:3\r\nN;LANGUAGE=de;CHARSET=Windows-1252:Gr\xFCn\\; "
        "Wei\xDF;Zo\xEB\r\n"
        "FN;CHARSET=Windows-1252:Zo\xEB Gr\xFCn\\; Wei\xDF\r\nORG;CHARSET=Windows-1252:M\xFCller, S\xF6hne & "
        "Co;Department\r\n"
        "TITLE;CHARSET=Windows-1252:K\xE4pt'n\r\nTEL;CELL;VOICE:+49 171 1\r\nTEL;WORK;FAX:0731 2\r\n"
        "ADR;WORK;PREF;CHARSET=Windows-1252:;;Gro\xDF"
        "e Gasse 1;Ulm;BW;89073;\xD6sterreich\r\n"
        "LABEL;WORK;PREF;ENCODING=QUOTED-PRINTABLE:Gro=DFe Gasse 1=0D=0A=\r\n89073 Ulm\r\n"
        "BDAY:19840229\r\nEMAIL;PREF;INTERNET;HOME;CHARSET=Windows-1252:zoe@gr\xFCn.example\r\n"
        "PHOTO;TYPE=PNG;ENCODING=BASE64:\r\n " +
        folded(picture.toBase64(), "\r\n ") +
        "\r\n\r\n"
        "X-OFFICE-DESIGN;CHARSET=utf-8:<card xmlns=\"a:b\" "
        "ver=\"1.0\"/>\r\nREV:20261122T090000Z\r\nEND:VCARD\r\n"));
}

TEST_F(VCardMakersTest, AnAddressBookThatWritesVersion30WithGroups)
{
    expectZoe(contactOf(
        "BEGIN:VCARD\nVERSION:3.0\nPRODID:-//An address book//EN\nN:Grün\\; Weiß;Zoë;Ada;;\nFN:Zoë Ada "
        "Grün\\; Weiß\n"
        "ORG:Müller\\, Söhne & Co;\nTITLE:Käpt'n\nEMAIL;type=INTERNET;type=HOME;type=pref:zoe@grün.example\n"
        "TEL;type=CELL;type=VOICE;type=pref:+49 171 1\nitem1.TEL:0731 2\nitem1.X-ABLabel:_$!<WorkFAX>!$_\n"
        "item2.ADR;type=WORK;type=pref:;;Große Gasse 1;Ulm;BW;89073;Österreich\nitem2.X-ABADR:at\n"
        "BDAY:1984-02-29\nPHOTO;ENCODING=b;TYPE=PNG:" +
        folded(picture.toBase64(), "\n ") +
        "\n"
        "UID:0\nX-ABUID:1:ABPerson\nEND:VCARD\n"));
}

TEST_F(VCardMakersTest, AWebMailThatWritesVersion30WithEscapedColons)
{
    const QByteArray text =
        "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Zoë Grün\\; Weiß\r\nN:Grün\\; "
        "Weiß;Zoë;;;\r\nEMAIL;TYPE=INTERNET;TYPE=HOME:zoe@grün.example\r\n"
        "TEL;TYPE=CELL:+49 171 1\r\nTEL;TYPE=WORK,FAX:0731 2\r\n"
        "ADR;TYPE=WORK:;;Große Gasse 1;Ulm;BW;89073;Österreich\r\nORG:Müller\\, Söhne & "
        "Co\r\nTITLE:Käpt'n\r\nBDAY:19840229\r\n"
        "item1.URL:https\\://zoe.example\r\nitem1.X-ABLabel:PROFILE\r\nPHOTO;ENCODING=BASE64;TYPE=PNG:" +
        picture.toBase64() + "\r\nEND:VCARD\r\n";
    expectZoe(contactOf(text));
    EXPECT_EQ(contactOf(text).urlAddresses, (Values{{u"PROFILE"_qs, u"https://zoe.example"_qs}}));
}

TEST_F(VCardMakersTest, AServerThatWritesVersion40)
{
    QByteArray text =
        "BEGIN:VCARD\r\nVERSION:4.0\r\nKIND:individual\r\nUID:urn:uuid:4fbe8971-0bc3-424c-9c26-"
        "36c3e1eff6b1\r\n"
        "FN;PREF=1:Zoë Grün\\; Weiß\r\nN;SORT-AS=\"Grun,Zoe\":Grün\\; "
        "Weiß;Zoë;;Dr.;\r\nORG;ALTID=1;LANGUAGE=de:Müller\\, Söhne & Co\r\n"
        "TITLE:Käpt'n\r\nTEL;VALUE=uri;TYPE=\"voice,cell\":tel:+49%20171%201\r\nTEL;TYPE=\"work\",\"fax\":"
        "0731 2\r\n"
        "EMAIL;TYPE=home;PREF=1:zoe@grün.example\r\n"
        "ADR;TYPE=work;LABEL=\"Große Gasse 1^n89073 Ulm: ^'BW^'\":;;Große Gasse 1;Ulm;BW;89073;Österreich\r\n"
        "BDAY:19840229\r\nANNIVERSARY:20090808\r\nRELATED;TYPE=friend:urn:uuid:1\r\n"
        "PHOTO:data:image/png;base64," +
        picture.toBase64() + "\r\nEND:VCARD\r\n";
    // Every 75 bytes a fold, also inside of a letter.
    QByteArray hard;
    for (const QByteArray &line : text.split('\n'))
        hard += folded(line, "\r\n ") + (line.isEmpty() ? "" : "\n");
    expectZoe(contactOf(text));
    expectZoe(contactOf(hard));
}

} // namespace
