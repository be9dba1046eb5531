#include "VCardSteps.h"

#include "contacts/VCardWriter.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using VCardWriter::Version;

class VCardWriterTest : public testing::TestWithParam<Version>
{
protected:
    QString text(int longest)
    {
        static const QStringList pieces = {u"a"_qs, u"ü"_qs,   u"漢"_qs,  u"😀"_qs,  u" b"_qs, u";"_qs,
                                           u","_qs, u":"_qs,   u"\\"_qs,  u"n"_qs,  u"\""_qs, u"^n"_qs,
                                           u"="_qs, u"=3B"_qs, u"END"_qs, u"\\n"_qs};
        QString made = u"x"_qs;
        for (int left = number(longest); left > 0; --left)
            made += pieces[number(int(pieces.size()) - 1)];
        return made;
    }
    int number(int most) { return std::uniform_int_distribution(0, most)(random); }

    CNContact contact()
    {
        static const QStringList labels = {QString(),      CNLabel::home,    CNLabel::work,
                                           CNLabel::other, CNLabel::iPhone,  CNLabel::mobile,
                                           CNLabel::main,  CNLabel::homeFax, CNLabel::workFax,
                                           CNLabel::fax,   CNLabel::pager,   u"Boat, \"the\"; red"_qs,
                                           u"Facebook"_qs};
        const auto label = [&] { return labels[number(int(labels.size()) - 1)]; };
        CNContact made;
        made.identifier = text(5);
        made.givenName = number(3) ? text(20) : QString();
        made.familyName = number(3) || made.givenName.isEmpty() ? text(20) : QString();
        made.organizationName = number(1) ? text(90) : QString();
        made.jobTitle = number(1) ? text(9) : QString();
        if (number(1))
            made.birthday = CNBirthday{number(1) ? std::optional(1800 + number(300)) : std::nullopt,
                                       1 + number(11), 1 + number(27)};
        for (int count = number(3); count > 0; --count) {
            made.phoneNumbers.push_back({label(), text(9)});
            made.emailAddresses.push_back({label(), text(90)});
            made.urlAddresses.push_back({label(), u"https://"_qs + text(90)});
            made.postalAddresses.push_back(
                {label(),
                 {text(9) + u"\nline"_qs, number(1) ? text(9) : QString(), text(9), {}, text(9), text(3)}});
        }
        for (int count = number(2); count > 0; --count)
            made.groups.append(QString::number(count) + text(9));
        for (int count = number(200); count > 0; --count)
            made.imageData += char(number(255));
        return made;
    }

    std::mt19937 random{testSeed()};
};

TEST_P(VCardWriterTest, GeneratedContactsAreReadBackTheSame)
{
    QByteArray all;
    std::vector<CNContact> contacts;
    for (int count = 0; count < 300; ++count) {
        contacts.push_back(contact());
        all += VCardWriter::text(contacts.back(), GetParam());
    }
    for (const QByteArray &line : all.split('\n')) {
        EXPECT_LE(line.size(), 76) << "75 bytes and the CR";
        EXPECT_EQ(QString::fromUtf8(line).toUtf8(), line) << "no fold inside of a letter";
    }
    const std::vector<VCard> cards = cardsOf(all);
    ASSERT_EQ(cards.size(), contacts.size());
    for (std::size_t place = 0; place < cards.size(); ++place)
        EXPECT_EQ(contactFrom(cards[place]), contacts[place])
            << VCardWriter::text(contacts[place], GetParam()).constData();
}

TEST_P(VCardWriterTest, GeneratedDamageNeverSpoilsTheCardsBehind)
{
    for (int round = 0; round < 300; ++round) {
        QByteArray damaged = VCardWriter::text(contact(), GetParam());
        for (int count = number(8); count >= 0; --count) {
            const int place = number(int(damaged.size()) - 1);
            if (number(2))
                damaged[place] = char(number(255));
            else
                damaged.remove(place, number(20));
        }
        const auto cards = cardsOf(damaged + "\r\n" + card("FN:next\r\nUID:the last one"));
        ASSERT_FALSE(cards.empty()) << damaged.toPercentEncoding().constData();
        EXPECT_EQ(contactFrom(cards.back()).identifier, u"the last one"_qs)
            << damaged.toPercentEncoding().constData();
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, VCardWriterTest, testing::Values(Version::V30, Version::V40),
                         [](const auto &one) { return one.param == Version::V30 ? "V30" : "V40"; });

TEST(VCardWriterTest, WritesWhatOtherProgramsExpect)
{
    CNContact contact;
    contact.givenName = u"Ann"_qs;
    contact.familyName = u"Lee"_qs;
    contact.organizationName = u"Works; Tools"_qs;
    contact.birthday = CNBirthday{1970, 5, 17};
    contact.phoneNumbers = {{CNLabel::mobile, u"1"_qs}, {u"Boat"_qs, u"2"_qs}, {CNLabel::workFax, u"3"_qs}};
    contact.urlAddresses = {{{}, u"https://b.org/?a;b,c"_qs}};
    contact.imageData = "\x89PNG";
    EXPECT_EQ(VCardWriter::text(contact, Version::V30),
              "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\nORG:Works\\; "
              "Tools\r\nBDAY:1970-05-17\r\n"
              "TEL;TYPE=CELL:1\r\nitem1.TEL:2\r\nitem1.X-ABLabel:Boat\r\nTEL;TYPE=WORK,FAX:3\r\nURL:https://"
              "b.org/?a\\;b\\,c\r\n"
              "PHOTO;ENCODING=b;TYPE=PNG:iVBORw==\r\nEND:VCARD\r\n");
    EXPECT_EQ(
        VCardWriter::text(contact, Version::V40),
        "BEGIN:VCARD\r\nVERSION:4.0\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\nORG:Works\\; Tools\r\nBDAY:19700517\r\n"
        "TEL;TYPE=cell:1\r\nitem1.TEL:2\r\nitem1.X-ABLabel:Boat\r\nTEL;TYPE=work,fax:3\r\nURL:https://b.org/"
        "?a\\;b\\,c\r\n"
        "PHOTO:data:image/png;base64,iVBORw==\r\nEND:VCARD\r\n");
    CNContact firm;
    firm.isOrganization = true;
    firm.organizationName = u"Works"_qs;
    for (const Version version : {Version::V30, Version::V40})
        EXPECT_EQ(contactOf(VCardWriter::text(firm, version)), firm);
}

} // namespace
