#pragma once

#include <QTcpServer>
#include <QUrl>

#include <functional>
#include <optional>

/// A web server of this machine that answers GET as a test wants it to.
class HttpServer : public QTcpServer
{
public:
    /// The body for a path with its query; absent for "404 Not Found".
    using Answer = std::function<std::optional<QByteArray>(const QUrl &)>;

    explicit HttpServer(Answer answer);

    QString address() const;
    /// What was asked for so far.
    const QList<QUrl> &asked() const { return requests; }

private:
    void serve();

    Answer answerOf;
    QList<QUrl> requests;
};
