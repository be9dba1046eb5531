#include "records/TaskDraft.h"

#include "records/copies/TaskColumns.h"
#include "store/queries/DBWorker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int presentVersion = 1;

const QString versionKey = u"version"_s;
const QString recordKey = u"task"_s;
const QString sampleKey = u"sample"_s;
const QString valuesKey = u"values"_s;
/// Only what the user has changed stands there.
const QString formerKey = u"before"_s;

/// Two thousand years in seconds: dates beyond are none that a form can have.
constexpr double furthestDate = 6.4e10;

QString keyOf(std::string_view name)
{
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

// One value to JSON; absent is null.

QJsonValue coded(const QString &text)
{
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}

QJsonValue codedValue(Date date)
{
    return date.referenceSeconds();
}

QJsonValue codedValue(bool truth)
{
    return truth;
}

template <typename Number>
QJsonValue codedValue(Number number)
{
    if constexpr (std::is_enum_v<Number>)
        return static_cast<int>(number);
    else
        return number;
}

template <typename Value>
QJsonValue coded(const std::optional<Value> &value)
{
    return value ? codedValue(*value) : QJsonValue();
}

template <typename Record>
QJsonValue coded(const std::shared_ptr<Record> &record)
{
    return record ? QJsonValue(DBWorker::getIdFromObject(record)) : QJsonValue();
}

template <typename Record>
QJsonValue coded(const std::vector<std::shared_ptr<Record>> &records)
{
    QJsonArray array;
    for (const auto &record : records)
        array.append(coded(record));
    return array;
}

// And back. False for anything that is no such value.

bool decode(const QJsonValue &json, QString &text)
{
    text = json.isString() ? json.toString() : QString();
    return json.isString() || json.isNull();
}

bool decodeValue(const QJsonValue &json, Date &date)
{
    date = Date::fromReferenceSeconds(json.toDouble());
    return json.isDouble() && std::abs(json.toDouble()) <= furthestDate;
}

bool decodeValue(const QJsonValue &json, bool &truth)
{
    truth = json.toBool();
    return json.isBool();
}

template <typename Number>
bool decodeValue(const QJsonValue &json, Number &number)
{
    if constexpr (std::is_same_v<Number, double>)
        number = json.toDouble();
    else
        number = static_cast<Number>(json.toInt());
    return json.isDouble();
}

template <typename Value>
bool decode(const QJsonValue &json, std::optional<Value> &value)
{
    value.reset();
    return json.isNull() || decodeValue(json, value.emplace());
}

template <typename Record>
bool decode(const QJsonValue &json, std::shared_ptr<Record> &record)
{
    record = std::dynamic_pointer_cast<Record>(DBWorker::getObjectFromId(json.toString()));
    return json.isNull() || json.isString();
}

template <typename Record>
bool decode(const QJsonValue &json, std::vector<std::shared_ptr<Record>> &records)
{
    records.clear();
    for (const QJsonValue &one : json.toArray()) {
        std::shared_ptr<Record> record;
        if (decode(one, record) && record)
            records.push_back(record);
    }
    return json.isArray();
}

/// Of values that the form neither shows nor changes, those of the row count.
template <typename Column>
constexpr bool isKept(const Column &column)
{
    return column.follows != taskcolumns::Follows::Nothing;
}

/// False if a value cannot be read. One that is missing stays what it is.
bool read(const QJsonObject &json, MVTask &task)
{
    bool isReadable = true;
    taskcolumns::forEach([&](const auto &column) {
        const QString key = keyOf(column.name);
        if (isKept(column) && json.contains(key))
            isReadable = decode(json.value(key), task.*column.member) && isReadable;
    });
    return isReadable;
}

} // namespace

TaskPtr TaskDraft::task() const
{
    return std::dynamic_pointer_cast<EntityTask>(DBWorker::getObjectFromId(record));
}

QByteArray TaskDraft::encoded() const
{
    QJsonObject values;
    QJsonObject former;
    taskcolumns::forEach([&](const auto &column) {
        if (!isKept(column))
            return;
        const QString key = keyOf(column.name);
        values.insert(key, coded(edited.*column.member));
        if (!taskcolumns::isSame(edited.*column.member, base.*column.member))
            former.insert(key, coded(base.*column.member));
    });
    return QJsonDocument(QJsonObject{{versionKey, presentVersion},
                                     {recordKey, record},
                                     {sampleKey, isOfSample},
                                     {valuesKey, values},
                                     {formerKey, former}})
        .toJson();
}

std::variant<TaskDraft, TaskDraft::Unreadable> TaskDraft::decoded(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const QJsonValue version = object.value(versionKey);
    if (version.toInt() > presentVersion)
        return Unreadable::FromNewerVersion;
    TaskDraft draft;
    draft.record = object.value(recordKey).toString();
    draft.isOfSample = object.value(sampleKey).toBool();
    const bool isWhole = version.toInt() == presentVersion && object.value(recordKey).isString() &&
                         object.value(valuesKey).isObject() && object.value(formerKey).isObject();
    if (!isWhole || !read(object.value(valuesKey).toObject(), draft.edited))
        return Unreadable::Damaged;
    draft.base = draft.edited;
    if (!read(object.value(formerKey).toObject(), draft.base))
        return Unreadable::Damaged;
    return draft;
}
