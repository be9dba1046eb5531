#include "CoreTest.h"

#include "records/people/ItemListAddress.h"
#include "records/people/ItemListEmailPhoneUrl.h"
#include "records/people/ItemListProject.h"
#include "records/people/MVContacts.h"

namespace {

class FormRows : public CoreTest
{
protected:
    ~FormRows() override { UserDefaults::standard().removeObject(settings::contactDisplayOrder); }

    using Row = ItemListEmailPhoneUrl;
    static QString phoneLink(const QString &number)
    {
        Row row;
        row.setPhoneNumber(number);
        EXPECT_EQ(row.text(), number);
        return row.link();
    }
    static QString urlLink(const QString &url)
    {
        Row row;
        row.setURLString(url);
        EXPECT_EQ(row.text(), url);
        return row.link();
    }
};

TEST_F(FormRows, LinkPhonesByTheirDigits)
{
    EXPECT_EQ(phoneLink(u"+1 (312) 555-1212"_qs), u"tel:+13125551212"_qs);
    EXPECT_EQ(phoneLink(u"（＋49） 30/12+3"_qs), u"tel:+4930123"_qs);
    EXPECT_EQ(phoneLink(u"٠١٢ ext ９"_qs), u"tel:012;ext=9"_qs);
    EXPECT_EQ(phoneLink(u"+1-555-555 ext. 5555"_qs), u"tel:+1555555;ext=5555"_qs);
    EXPECT_EQ(phoneLink(u"555x12"_qs), u"tel:555;ext=12"_qs);
    EXPECT_EQ(phoneLink(u"030 12 Durchwahl: 7 or 8"_qs), u"tel:03012;ext=7"_qs);
    EXPECT_EQ(phoneLink(u"Max 555 12"_qs), u"tel:55512"_qs) << "no x of a number";
    EXPECT_EQ(phoneLink(u"555 12,,34"_qs), u"tel:55512"_qs) << "pauses are no part of a number";
    EXPECT_EQ(phoneLink(u"+49 (0) 30 1"_qs), u"tel:+49301"_qs);
    EXPECT_EQ(phoneLink(u"（０049） (0)30 1"_qs), u"tel:0049301"_qs);
    EXPECT_EQ(phoneLink(u"+39 (0)6 1"_qs), u"tel:+39061"_qs) << "in Italy the zero is dialled from abroad";
    EXPECT_EQ(phoneLink(u"(0) 30 1"_qs), u"tel:0301"_qs);
    EXPECT_EQ(phoneLink(u"ask Ann"_qs), u"tel:"_qs);
    EXPECT_EQ(phoneLink(QString()), QString());
}

TEST_F(FormRows, LinkMailAndWebAddresses)
{
    Row mail;
    mail.setEmailString(u"ann@example.org"_qs);
    EXPECT_EQ(mail.link(), u"mailto:ann@example.org"_qs);
    mail.setEmailString(u"a@b.org?bcc=x@y.org&body=hi"_qs);
    EXPECT_EQ(mail.link(), u"mailto:a@b.org%3Fbcc%3Dx@y.org%26body%3Dhi"_qs) << "no second recipient";
    mail.setEmailString(QString());
    EXPECT_EQ(mail.link() + mail.text(), QString());

    EXPECT_EQ(urlLink(u"example.org/a?b=c&d"_qs), u"https://example.org/a?b=c&d"_qs);
    EXPECT_EQ(urlLink(u"https://example.org"_qs), u"https://example.org"_qs);
    EXPECT_EQ(urlLink(u" example.org:8080/ "_qs), u"https://example.org:8080/"_qs);
    EXPECT_EQ(urlLink(u"mailto:a@b.org"_qs), u"mailto:a@b.org"_qs);
    EXPECT_EQ(urlLink(u"http://example.org/?to=https://b.org"_qs),
              u"http://example.org/?to=https://b.org"_qs);
    EXPECT_EQ(urlLink(u"example.org/ä b#c%20"_qs), u"https://example.org/%C3%A4%20b#c%20"_qs);
    EXPECT_EQ(urlLink(u"HTTP://example.org"_qs), u"HTTP://example.org"_qs);
    EXPECT_EQ(urlLink(QString()), QString());
}

TEST_F(FormRows, TakeTheFirstTypeThatIsFree)
{
    Row::PhoneTypes types;
    for (const auto &type : DBWorker::allPhoneType())
        types.push_back(type);
    types.resize(3);
    Row::Rows rows;
    EXPECT_EQ(Row::typeNoSelectPhone(types, rows), types[0]);
    EXPECT_EQ(Row::typeNoSelectPhone({}, rows), nullptr);
    for (const auto &expected : types) {
        rows.push_back(Row::initPhoneItem(nullptr, types, rows, true));
        EXPECT_EQ(rows.back().type(), expected);
    }
    EXPECT_EQ(Row::initPhoneItem(nullptr, types, rows, true).type(), nullptr) << "All are used";

    const auto stored = context().insert<EntityPhone>();
    stored->setNumber(u"12"_qs);
    stored->setType(types[2]);
    const Row row = Row::initPhoneItem(stored, types, {}, false);
    EXPECT_EQ(row.entity(), stored);
    EXPECT_EQ(row.type(), types[2]);
    EXPECT_EQ(row.link(), u"tel:12"_qs);
    EXPECT_FALSE(row.isEditable());
}

TEST_F(FormRows, ShowStoredMailWebAndPostalAddresses)
{
    const auto email = context().insert<EntityEmail>();
    email->setMail(u"a@b.org"_qs);
    email->setType(DBWorker::allEmailType().at(1));
    const Row mail = Row::initEmailItem(email, {}, {}, true);
    EXPECT_EQ(mail.text(), u"a@b.org"_qs);
    EXPECT_EQ(
        Row::typeNoSelectEmail({DBWorker::allEmailType().at(1), DBWorker::allEmailType().at(0)}, {mail}),
        DBWorker::allEmailType().at(0));
    const auto url = context().insert<EntityURL>();
    url->setUrl(u"b.org"_qs);
    EXPECT_EQ(Row::initURLItem(url, {}, {}, true).link(), u"https://b.org"_qs);
    EXPECT_EQ(Row::typeNoSelectURL({DBWorker::allURLType().at(0)}, {}), DBWorker::allURLType().at(0));

    const auto address = context().insert<EntityAddress>();
    address->setCity(u"Ulm"_qs);
    address->setStreet1(u"Main St 1"_qs);
    address->setAddressType(DBWorker::allAddressType().at(0));
    const ItemListAddress row = ItemListAddress::initAddressItem(address, {}, {}, true);
    EXPECT_EQ(row.text(), u"Main St 1, Ulm"_qs);
    EXPECT_EQ(row.entity(), address);
    const ItemListAddress::Types types = {DBWorker::allAddressType().at(0), DBWorker::allAddressType().at(1)};
    const ItemListAddress blank = ItemListAddress::initAddressItem(nullptr, types, {row}, true);
    EXPECT_EQ(blank.type(), types[1]);
    EXPECT_TRUE(blank.isEmpty());

    const auto project = context().insert<EntityProject>();
    project->setTitle(u"House"_qs);
    EXPECT_EQ(ItemListProject(project, true).text(), u"House"_qs);
    EXPECT_EQ(ItemListProject(nullptr, true).text(), QString());
}

TEST_F(FormRows, NameAContactInEitherOrder)
{
    MVContacts contact;
    EXPECT_EQ(contact.fullName(), QString());
    contact.lastName = u"Lee"_qs;
    for (const int order : {0, 1}) {
        UserDefaults::standard().setObject(settings::contactDisplayOrder, order);
        contact.firstName.clear();
        EXPECT_EQ(contact.fullName(), u"Lee"_qs);
        contact.firstName = u"Ann"_qs;
        EXPECT_EQ(contact.fullName(), order == 0 ? u"Ann Lee"_qs : u"Lee Ann"_qs);
    }
}

} // namespace
