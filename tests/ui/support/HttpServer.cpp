#include "ui/support/HttpServer.h"

#include <QTcpSocket>

HttpServer::HttpServer(Answer answer)
    : answerOf(std::move(answer))
{
    listen(QHostAddress::LocalHost);
    connect(this, &QTcpServer::newConnection, this, &HttpServer::serve);
}

QString HttpServer::address() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(serverPort());
}

void HttpServer::serve()
{
    QTcpSocket *socket = nextPendingConnection();
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
        const QList<QByteArray> words = socket->readLine().split(' ');
        if (words.size() < 2)
            return;
        socket->readAll();
        const QUrl url(QString::fromLatin1(words.at(1)));
        requests.append(url);
        const auto body = answerOf(url);
        socket->write(body ? "HTTP/1.1 200 OK\r\n" : "HTTP/1.1 404 Not Found\r\n");
        socket->write(
            "Connection: close\r\nContent-Length: " + QByteArray::number(body.value_or(QByteArray()).size()) +
            "\r\n\r\n" + body.value_or(QByteArray()));
        socket->disconnectFromHost();
    });
}
