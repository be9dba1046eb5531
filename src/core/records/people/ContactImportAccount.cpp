#include "records/people/ContactImportAccount.h"

#include "foundation/Localization.h"

using namespace Qt::Literals::StringLiterals;

/// "Ann Lee, Bob Kay and 3 more".
static QString someOf(const QStringList &names)
{
    constexpr int most = 5;
    const QString some = names.mid(0, most).join(u", "_s);
    return names.size() > most ? localized(u"%1 and %2 more"_s).arg(some).arg(names.size() - most) : some;
}

QStringList ContactImportAccount::sentences() const
{
    QStringList all;
    const QStringList filled = filledContacts + filledCompanies;
    if (added > 0)
        all.append(localizedCount(u"%1 contacts were imported."_s, added));
    else if (addedCompanies == 0 && filled.isEmpty())
        all.append(localized(u"No contact was imported."_s));
    if (companies > 0)
        all.append(localizedCount(u"%1 companies were imported."_s, companies));
    if (groups > 0)
        all.append(localizedCount(u"%1 groups are new."_s, groups));
    if (projects > 0)
        all.append(localizedCount(u"%1 projects are new."_s, projects));
    const auto tell = [&](const QStringList &names, const QString &sentence) {
        if (!names.isEmpty())
            all.append(localizedCount(sentence, names.size()).arg(someOf(names)));
    };
    if (wasStopped)
        all.append(localized(u"The import was stopped; what it had done by then stays."_s));
    tell(filled, u"%1 were known by name only and now have what their cards say: %2."_s);
    tell(existing, u"%1 were there already: %2."_s);
    tell(poorer, u"%1 of those lack something that their cards have, and stay as they are: %2."_s);
    if (!namesakes.isEmpty())
        all.append(
            localized(
                u"Cards with other phones and mail, which may be those of other people, were left out: %1."_s)
                .arg(someOf(namesakes)));
    tell(refused, u"%1 could not be imported: %2"_s);
    tell(withoutPicture, u"%1 came without a picture, since that is none or cannot be read: %2."_s);
    tell(withPictureOnWeb, u"%1 have a picture on the web, whose address stands in a note: %2."_s);
    tell(withoutYear, u"%1 birthdays without a year stand in notes: %2."_s);
    tell(unreadBirthdays, u"%1 birthdays cannot be read and stand in notes: %2."_s);
    tell(otherJobTitles, u"%1 job titles are none of those that there are and stand in notes: %2."_s);
    if (!withOtherWords.isEmpty())
        all.append(localized(u"Words for which there is no field stand in notes: %1."_s)
                       .arg(someOf(withOtherWords)));
    return all;
}
