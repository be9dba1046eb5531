#include "records/HelpAddresses.h"

#include "workspace/PlatformConfiguration.h"

using namespace Qt::Literals::StringLiterals;

static QString helpPage(const QString &name)
{
    return PlatformConfiguration().textIn(u"helpPages"_s, name);
}

QString HelpAddresses::guide(const QStringList &preferredLocalizations)
{
    const QString usual = PlatformConfiguration().text(u"helpPages"_s);
    if (!usual.isEmpty())
        return usual;
    QString language = preferredLocalizations.value(0);
    if (language == u"fr-CA"_s)
        language = u"fr"_s;
    const bool hasPage = language == u"fr"_s || language == u"zh-Hant"_s || language == u"zh-Hans"_s;
    const QString page = hasPage ? helpPage(language) : QString();
    return page.isEmpty() ? helpPage(u"default"_s) : page;
}

QString HelpAddresses::videos()
{
    return helpPage(u"videos"_s);
}
