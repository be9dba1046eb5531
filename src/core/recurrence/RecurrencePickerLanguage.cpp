#include "recurrence/RecurrencePickerLanguage.h"

#include "foundation/Region.h"

#include <QStringList>

static const QStringList &codes()
{
    static const QStringList list =
        QStringLiteral("en zh-Hans zh-Hant ko ja ru fr de uk es it pt-PT nl nb sv ms he ar").split(u' ');
    return list;
}

/// Chinese is told apart by its script, or by the places where a script is in use.
static QString chinese(const QStringList &subtags)
{
    for (const QString &tag :
         {QStringLiteral("hant"), QStringLiteral("tw"), QStringLiteral("hk"), QStringLiteral("mo")}) {
        if (subtags.contains(tag))
            return QStringLiteral("zh-Hant");
    }
    return QStringLiteral("zh-Hans");
}

QString RecurrencePickerLanguages::code(RecurrencePickerLanguage language)
{
    return codes().at(static_cast<int>(language));
}

RecurrencePickerLanguage RecurrencePickerLanguages::ofCode(const QString &code)
{
    const QStringList subtags = QString(code).replace(u'_', u'-').toLower().split(u'-');
    QString base = subtags.first();
    if (base == u"zh")
        base = chinese(subtags);
    else if (base == u"pt")
        base = QStringLiteral("pt-PT");
    else if (base == u"no" || base == u"nn")
        base = QStringLiteral("nb");
    const qsizetype index = codes().indexOf(base);
    return static_cast<RecurrencePickerLanguage>(std::max<qsizetype>(index, 0));
}

RecurrencePickerLanguage RecurrencePickerLanguages::current()
{
    return ofCode(Region::preferredLocalizations().value(0));
}
