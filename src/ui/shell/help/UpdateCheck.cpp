#include "shell/help/UpdateCheck.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "store/AppDelegate.h"
#include "workspace/PlatformConfiguration.h"
#include "workspace/Workspace.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QVersionNumber>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int patienceForFeed = 15000;
constexpr qint64 mostBytesOfFeed = 64 * 1024;

void tellOfFailedCheck(const QString &reason)
{
    Alert::run({{},
                localized(u"Whether there is a newer version could not be found out."_s),
                reason,
                {localized(u"OK"_s)}});
}

void tellOfAnswer(QNetworkReply &reply)
{
    if (reply.error() != QNetworkReply::NoError)
        return tellOfFailedCheck(reply.errorString());
    const QJsonObject answer = QJsonDocument::fromJson(reply.read(mostBytesOfFeed)).object();
    const QString version = answer.value(u"version"_s).toString();
    const QString page = answer.value(u"page"_s).toString();
    if (QVersionNumber::fromString(version).isNull())
        return tellOfFailedCheck(localized(u"The answer of the server cannot be read."_s));
    const QString own = AppDelegate::version();
    if (!UpdateCheck::isNewer(version, own)) {
        Alert::run(
            {{}, localized(u"Morvane %1 is the newest version."_s).arg(own), {}, {localized(u"OK"_s)}});
        return;
    }
    const int pressed = Alert::run({{},
                                    localized(u"Morvane %1 is available."_s).arg(version),
                                    localized(u"You have version %1."_s).arg(own),
                                    {localized(u"Show"_s), localized(u"Cancel"_s)}});
    if (pressed == Alert::firstButton && !page.isEmpty())
        Workspace::openUrl(page);
}

} // namespace

bool UpdateCheck::isNewer(const QString &version, const QString &than)
{
    return QVersionNumber::fromString(version).normalized() > QVersionNumber::fromString(than).normalized();
}

void UpdateCheck::run()
{
    const QUrl feed(PlatformConfiguration().text(u"updateFeed"_s));
    if (feed.isEmpty())
        return;
    if (feed.scheme() != u"https"_s && feed.scheme() != u"http"_s)
        return tellOfFailedCheck(localized(u"\"%1\" is no address of a web page."_s).arg(feed.toString()));
    auto *network = new QNetworkAccessManager;
    QNetworkRequest request(feed);
    request.setTransferTimeout(patienceForFeed);
    QNetworkReply *reply = network->get(request);
    QObject::connect(reply, &QNetworkReply::finished, network, [reply, network] {
        network->deleteLater();
        tellOfAnswer(*reply);
    });
}
