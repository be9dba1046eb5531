#pragma once

#include "shell/maps/MapProjection.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <optional>

class QNetworkReply;

/// Finds the place of a text, and the address of a place, by HTTP.
///
/// The service answers as OpenStreetMap's Nominatim does: an array of places, or one, each with "lat", "lon"
/// and "display_name". Only the answer to the last question comes; a service that does not answer in time
/// counts as out of reach.
class Geocoder : public QObject
{
    Q_OBJECT
public:
    /// The address of the service: `{query}` stands for the text, otherwise it goes into the parameter "q".
    /// Empty: there is no service, and nothing is ever asked.
    explicit Geocoder(const QString &serviceUrl, QObject *parent = nullptr);

    bool isConfigured() const { return !service.isEmpty(); }
    /// Whether an answer is awaited.
    bool isAsking() const { return !pending.isNull(); }
    void search(const QString &text);
    /// Asks for the address of a place; `found` answers.
    void address(const MapPlace &place);
    /// Forgets the question that is under way.
    void cancel();

    /// What is asked, and what an answer says; absent for one that names no place.
    QUrl searchUrl(const QString &text) const;
    QUrl addressUrl(const MapPlace &place) const;
    struct Answer
    {
        QString title;
        MapPlace place;
    };
    static std::optional<Answer> read(const QByteArray &json);

Q_SIGNALS:
    void found(const QString &title, const MapPlace &place);
    void nothingFound();
    /// The service cannot be reached or does not answer properly.
    void failed();

private:
    void ask(const QUrl &url);
    void answered(QNetworkReply &reply);

    QString service;
    QPointer<QNetworkReply> pending;
    /// Last, so that nothing is answered while the rest goes.
    QNetworkAccessManager network;
};
