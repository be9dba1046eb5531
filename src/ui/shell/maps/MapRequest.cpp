#include "shell/maps/MapRequest.h"

#include "store/AppDelegate.h"

#include <chrono>

using namespace Qt::Literals::StringLiterals;

constexpr std::chrono::milliseconds longestWait = std::chrono::seconds(10);

QNetworkRequest mapRequest(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader, u"Morvane/"_s + AppDelegate::version());
    request.setTransferTimeout(static_cast<int>(longestWait.count()));
    return request;
}
