#include "records/RecordDraft.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

constexpr int recordDraftVersion = 1;

static QJsonObject encodedTexts(const QMap<QString, QString> &texts)
{
    QJsonObject object;
    for (auto text = texts.begin(); text != texts.end(); ++text)
        object.insert(text.key(), text.value());
    return object;
}

/// Absent if something else than texts stands there.
static std::optional<QMap<QString, QString>> decodedTexts(const QJsonValue &value)
{
    QMap<QString, QString> texts;
    const QJsonObject object = value.toObject();
    for (auto text = object.begin(); text != object.end(); ++text) {
        if (!text.value().isString())
            return std::nullopt;
        texts.insert(text.key(), text.value().toString());
    }
    return texts;
}

QByteArray RecordDraft::encoded() const
{
    return QJsonDocument(QJsonObject{{u"version"_s, recordDraftVersion},
                                     {u"entity"_s, entity},
                                     {u"record"_s, record},
                                     {u"sample"_s, isOfSample},
                                     {u"texts"_s, encodedTexts(values)},
                                     {u"former"_s, encodedTexts(formerValues)}})
        .toJson();
}

std::optional<RecordDraft> RecordDraft::decoded(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    RecordDraft draft;
    draft.entity = object.value(u"entity"_s).toString();
    draft.record = object.value(u"record"_s).toString();
    draft.isOfSample = object.value(u"sample"_s).toBool();
    const auto typed = decodedTexts(object.value(u"texts"_s));
    const auto former = decodedTexts(object.value(u"former"_s));
    if (object.value(u"version"_s).toInt() != recordDraftVersion || draft.entity.isEmpty() ||
        !object.value(u"texts"_s).isObject() || !typed || !former)
        return std::nullopt;
    draft.values = *typed;
    draft.formerValues = *former;
    return draft;
}
