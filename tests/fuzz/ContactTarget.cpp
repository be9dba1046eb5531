#include "contacts/VCardContact.h"
#include "contacts/VCardReader.h"
#include "contacts/VCardWriter.h"
#include "fuzz/Targets.h"

#include <QBuffer>

#include <vector>

namespace {

std::vector<CNContact> contactsIn(QByteArray bytes)
{
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    VCardReader reader(device);
    std::vector<CNContact> contacts;
    while (const auto card = reader.next())
        contacts.push_back(contactFrom(*card));
    return contacts;
}

QString problemOfWriting(const CNContact &contact, VCardWriter::Version version)
{
    const QByteArray text = VCardWriter::text(contact, version);
    CNContact wanted = contact;
    // A picture that could not be had is not written.
    wanted.isImageMissing = false;
    // Nor is what is no birthday.
    wanted.unreadBirthday.clear();
    // Nor is what has no property of its own here.
    wanted.otherWords.clear();
    const std::vector<CNContact> again = contactsIn(text);
    return again == std::vector{wanted} ? QString()
                                        : QStringLiteral("not the same again: ") + QString::fromUtf8(text);
}

} // namespace

QString contradictionInContacts(const QByteArray &bytes)
{
    QString problem;
    for (const CNContact &contact : contactsIn(bytes)) {
        // A card needs a name; one without is written under another of its values.
        if (!contact.hasName() && contact.organizationName.isEmpty())
            continue;
        problem += problemOfWriting(contact, VCardWriter::Version::V30) +
                   problemOfWriting(contact, VCardWriter::Version::V40);
    }
    return problem;
}
