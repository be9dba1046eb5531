#pragma once

#include <QNetworkRequest>
#include <QUrl>

/// A request to a map service, which wants to know who asks and is not waited for long.
QNetworkRequest mapRequest(const QUrl &url);
