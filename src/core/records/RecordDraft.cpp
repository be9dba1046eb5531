#include "records/RecordDraft.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

constexpr int presentRecordVersion = 1;

QByteArray RecordDraft::encoded() const
{
    QJsonObject typed;
    for (auto value = values.begin(); value != values.end(); ++value)
        typed.insert(value.key(), value.value());
    return QJsonDocument(QJsonObject{{u"version"_s, presentRecordVersion},
                                     {u"entity"_s, entity},
                                     {u"record"_s, record},
                                     {u"sample"_s, isOfSample},
                                     {u"texts"_s, typed}})
        .toJson();
}

std::optional<RecordDraft> RecordDraft::decoded(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    RecordDraft draft;
    draft.entity = object.value(u"entity"_s).toString();
    draft.record = object.value(u"record"_s).toString();
    draft.isOfSample = object.value(u"sample"_s).toBool();
    const QJsonValue texts = object.value(u"texts"_s);
    if (object.value(u"version"_s).toInt() != presentRecordVersion || draft.entity.isEmpty() ||
        !texts.isObject())
        return std::nullopt;
    const QJsonObject typed = texts.toObject();
    for (auto text = typed.begin(); text != typed.end(); ++text) {
        if (!text.value().isString())
            return std::nullopt;
        draft.values.insert(text.key(), text.value().toString());
    }
    return draft;
}
