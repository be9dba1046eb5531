#pragma once

#include "store/entities/Entities.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

class ManagedObjectContext;

/// Writes the records that a description tells of into a store that has its seeds.
///
/// Dates are told as days from "firstDay" on and times of the day. A name of a category, a person, a place or
/// a project that the description has not told before is an error, as is a picture that cannot be drawn.
class SampleLife
{
public:
    /// \param folder where the pictures go.
    SampleLife(ManagedObjectContext &context, const QJsonObject &description, QString folder);

    /// Makes the objects; whoever calls saves them. What was wrong, or nothing.
    QStringList write();

private:
    void writeCompany(const QJsonObject &told);
    void writePerson(const QJsonObject &told);
    void writeGroup(const QJsonObject &told);
    void writePlace(const QJsonObject &told);
    void writeProject(const QJsonObject &told);
    TaskPtr writeTask(const QJsonObject &told);
    void writeSeries(const QJsonObject &told);
    void writeNote(const QJsonObject &told);
    void setDates(EntityTask &task, const QJsonObject &told);
    template <typename Owner>
    void writeDetails(const std::shared_ptr<Owner> &owner, const QJsonObject &told);
    /// The name of the picture's file; null for none.
    QString picture(const QString &name);
    template <typename Entity>
    std::shared_ptr<Entity> byTitle(const QString &title);
    template <typename Entity>
    std::shared_ptr<Entity> known(const QHash<QString, std::shared_ptr<Entity>> &all, const QJsonObject &told,
                                  const QString &key);
    Date dayOf(const QJsonObject &told) const;
    void forEach(const QString &list, void (SampleLife::*writeOne)(const QJsonObject &));

    ManagedObjectContext &store;
    QJsonObject life;
    QString pictures;
    Date firstDay;
    QStringList faults;
    QHash<QString, CompanyPtr> companies;
    QHash<QString, ContactPtr> people;
    QHash<QString, ProjectPtr> projects;
    QHash<QString, std::shared_ptr<EntityLocation>> places;
    QHash<QString, std::shared_ptr<EntityTags>> tags;
};
