#include "records/FeedbackMail.h"

#include "foundation/Localization.h"
#include "records/MailDraft.h"
#include "store/state/CoreContext.h"
#include "workspace/Machine.h"
#include "workspace/PlatformConfiguration.h"

#include <array>
#include <string_view>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A family of models: their identifiers, apart by blanks, and what they are called.
struct Models
{
    std::u16string_view identifiers;
    std::u16string_view name;
};

constexpr std::array modelTable = {
    Models{u"Macmini6,1 Macmini6,2", u"Mac Mini Late 2012"},
    Models{u"Macmini7,1", u"Mac Mini Late 2014"},
    Models{u"MacBookAir5,1 MacBookAir5,2", u"MacBook Air Mid 2012"},
    Models{u"MacBookAir6,1 MacBookAir6,2", u"MacBook Air Mid 2013 and Early 2014"},
    Models{u"MacBookAir7,1 MacBookAir7,2", u"MacBook Air Early 2015"},
    Models{u"MacBookAir8,2", u"MacBook Air Mid 2017"},
    Models{u"MacBook8,1", u"MacBook Early 2015"},
    Models{u"MacBook9,1", u"MacBook Early 2016"},
    Models{u"MacBook10,1", u"MacBook Mid 2017"},
    Models{u"MacBookPro6,1 MacBookPro6,2 MacBookPro6,3", u"MacBook Pro Mid 2010"},
    Models{u"MacBookPro8,1 MacBookPro8,2 MacBookPro8,3", u"MacBook Pro Mid 2011"},
    Models{u"MacBookPro9,1 MacBookPro9,2", u"MacBook Pro Mid 2012"},
    Models{u"MacBookPro10,1", u"MacBook Pro Retina Mid 2012"},
    Models{u"MacBookPro10,2", u"MacBook Pro Retina Late 2012"},
    Models{u"MacBookPro11,1 MacBookPro11,2 MacBookPro11,3", u"MacBook Pro Retina Mid 2014"},
    Models{u"MacBookPro12,1", u"MacBook Pro Retina Early 2015"},
    Models{u"MacBookPro11,4 MacBookPro11,5", u"MacBook Pro Retina Mid 2015"},
    Models{u"MacBookPro13,1 MacBookPro13,2 MacBookPro13,3", u"MacBook Pro Retina Late 2016"},
    Models{u"MacBookPro14,1 MacBookPro14,2 MacBookPro14,3", u"MacBook Pro Retina Mid 2017"},
    Models{u"iMac13,1 iMac13,2", u"iMac Late 2012"},
    Models{u"iMac14,1 iMac14,2", u"iMac Late 2013"},
    Models{u"iMac14,4", u"iMac Mid 2014"},
    Models{u"iMac16,1", u"iMac Late 2015"},
    Models{u"iMac18,1", u"iMac 2017"},
    Models{u"iMac15,1", u"iMac Retina Late 2014"},
    Models{u"iMac16,2 iMac17,1", u"iMac Retina Late 2015"},
    Models{u"iMac18,2 iMac18,3", u"iMac Retina Mid 2017"},
    Models{u"iMacPro1,1", u"iMac Pro"},
    Models{u"MacPro5,1", u"Mac Pro Mid 2012"},
    Models{u"MacPro6,1", u"Mac Pro Late 2013"},
    Models{u"MacPro7,1", u"Mac Pro Early 2017"},
};

QString point(int number, const QString &label, const QString &value)
{
    return u"%1. %2: %3"_s.arg(QString::number(number), localized(label), value);
}

} // namespace

QString FeedbackMail::revision()
{
    return QStringLiteral(MORVANE_REVISION);
}

QString FeedbackMail::systemVersion()
{
    static const QString version = Machine::system();
    return version;
}

QString FeedbackMail::deviceModelString(const QString &identifier)
{
    for (const Models &models : modelTable) {
        const QString identifiers =
            QString::fromUtf16(models.identifiers.data(), qsizetype(models.identifiers.size()));
        if (identifiers.split(u' ').contains(identifier))
            return u"%1 (%2)"_s.arg(QString::fromUtf16(models.name.data(), qsizetype(models.name.size())),
                                    identifier);
    }
    return u"unknown (%1)"_s.arg(identifier);
}

QString FeedbackMail::deviceModelString()
{
    return deviceModelString(Machine::model());
}

QString FeedbackMail::url()
{
    const QString subject = u"%1 (%2)"_s.arg(localized(u"Feedback on Morvane"_s), revision());
    const QString body = u"\n\n"_s + localized(u"Please, do not delete the text below"_s) + u":\n\n"_s +
                         point(1, u"Device model"_s, deviceModelString()) + u'\n' +
                         point(2, u"System version"_s, systemVersion()) + u'\n' +
                         point(3, u"App version"_s, CoreContext::version());
    return MailDraft{{PlatformConfiguration().text(u"supportAddress"_s)}, subject, body}.url();
}
