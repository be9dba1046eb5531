#include "BenchContacts.h"

#include "BenchHome.h"
#include "contacts/VCardContact.h"
#include "contacts/VCardReader.h"
#include "records/people/ImportableContacts.h"

#include <QBuffer>
#include <QUuid>

#include <sqlite3.h>

namespace {

constexpr int companyCount = 500;

/// A row by a statement that is prepared once; the first column is an identifier, which is answered.
class Inserting
{
public:
    Inserting(sqlite3 *connection, const char *sql)
    {
        sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr);
    }
    ~Inserting() { sqlite3_finalize(statement); }
    Q_DISABLE_COPY_MOVE(Inserting)

    QByteArray run(const QByteArrayList &values)
    {
        QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
        bind(1, id);
        for (int place = 0; place < values.size(); ++place)
            bind(place + 2, values[place]);
        sqlite3_step(statement);
        sqlite3_reset(statement);
        return id;
    }

private:
    void bind(int place, const QByteArray &text)
    {
        sqlite3_bind_text(statement, place, text.constData(), int(text.size()), SQLITE_TRANSIENT);
    }
    sqlite3_stmt *statement = nullptr;
};

} // namespace

QByteArray BenchContacts::cards()
{
    static int round = 0;
    ++round;
    QByteArray text;
    for (int number = 0; number < count; ++number) {
        const QByteArray name = QByteArray::number(round) + '-' + QByteArray::number(number);
        text += "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee " + name + ";Ann;;;\r\nFN:Ann Lee " + name +
                "\r\nORG:Works " + QByteArray::number(number % companyCount) + "\r\nTEL;TYPE=CELL:+49 171 " +
                name + "\r\nTEL;TYPE=WORK,VOICE:+49 731 " + name + "\r\nEMAIL;TYPE=HOME:ann" + name +
                "@works.example\r\nADR;TYPE=HOME:;;1 Main Street;Ulm;BW;89073;Germany\r\n"
                "BDAY:1970-05-17\r\nEND:VCARD\r\n";
    }
    return text;
}

ContactImportAccount BenchContacts::import(const QByteArray &text)
{
    ImportableContacts contacts;
    contacts.add(ContactCards::ofText(QStringLiteral("bench"), text));
    while (contacts.readSome(1'000)) {
    }
    contacts.list().markShown(true);
    return contacts.import([](const QByteArray &) { return QByteArray(); });
}

void BenchContacts::bareImport(QByteArray text)
{
    BenchHome::shared().runCaptured([&](sqlite3 *store) {
        Inserting contact(
            store, "INSERT INTO EntityContacts (id, firstName, lastName, company) VALUES (?, ?, ?, ?)");
        Inserting company(store, "INSERT INTO EntityCompany (id, title) VALUES (?, ?)");
        Inserting phone(store, "INSERT INTO EntityPhone (id, number, contact) VALUES (?, ?, ?)");
        Inserting email(store, "INSERT INTO EntityEmail (id, mail, contact) VALUES (?, ?, ?)");
        Inserting address(store,
                          "INSERT INTO EntityAddress (id, street1, city, state, zip, country, contact) "
                          "VALUES (?, ?, ?, ?, ?, ?, ?)");
        Inserting index(store, "INSERT INTO EntitySearchIndex (id, string, objectId) VALUES (?, ?, ?)");
        QHash<QString, QByteArray> companies;
        QBuffer device(&text);
        device.open(QIODevice::ReadOnly);
        VCardReader reader(device);
        while (const auto card = reader.next()) {
            const CNContact read = contactFrom(*card);
            QByteArray &firm = companies[read.organizationName];
            if (firm.isEmpty()) {
                firm = company.run({read.organizationName.toUtf8()});
                index.run({read.organizationName.toUtf8(), firm});
            }
            const QByteArray first = read.givenName.toUtf8();
            const QByteArray last = read.familyName.toUtf8();
            const QByteArray id = contact.run({first, last, firm});
            // The company is found by its people, too.
            index.run({first + ' ' + last, firm});
            index.run({first + ' ' + last, id});
            index.run({read.organizationName.toUtf8(), id});
            for (const auto &[label, number] : read.phoneNumbers) {
                phone.run({number.toUtf8(), id});
                index.run({number.toUtf8(), id});
            }
            for (const auto &[label, mail] : read.emailAddresses) {
                email.run({mail.toUtf8(), id});
                index.run({mail.toUtf8(), id});
            }
            for (const auto &[label, place] : read.postalAddresses) {
                const QByteArrayList parts = {place.street.toUtf8(), place.city.toUtf8(),
                                              place.state.toUtf8(), place.postalCode.toUtf8(),
                                              place.country.toUtf8()};
                address.run(parts + QByteArrayList{id});
                for (const QByteArray &part : parts)
                    index.run({part, id});
            }
        }
    });
}
