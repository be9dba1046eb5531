#include "recurrence/RecurrencePickerTexts.h"

#include "foundation/Log.h"

#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

static QJsonObject readTable(const QString &code)
{
    QFile file(QStringLiteral(":/translations/RecurrencePicker.%1.json").arg(code));
    QJsonParseError error;
    QJsonObject table;
    if (file.open(QIODevice::ReadOnly))
        table = QJsonDocument::fromJson(file.readAll(), &error).object();
    if (table.isEmpty())
        Log::line(
            QStringLiteral("Cannot read the words in %1: %2").arg(file.fileName(), error.errorString()));
    return table;
}

/// Read when the first word is asked for, and kept.
static const QJsonObject &tableOf(const QString &code)
{
    thread_local QHash<QString, QJsonObject> tables;
    auto found = tables.constFind(code);
    if (found == tables.constEnd())
        found = tables.insert(code, readTable(code));
    return *found;
}

RecurrencePickerTexts::RecurrencePickerTexts(RecurrencePickerLanguage tableLanguage)
    : language(tableLanguage)
{}

QString RecurrencePickerTexts::text(const QString &key) const
{
    return tableOf(RecurrencePickerLanguages::code(language)).value(key).toString(key);
}

QString RecurrencePickerTexts::text(const QString &key,
                                    const std::vector<MessageFormat::Argument> &arguments) const
{
    return MessageFormat::format(text(key), locale(), arguments);
}

QString RecurrencePickerTexts::locale() const
{
    return RecurrencePickerLanguages::code(language).replace(u'-', u'_');
}
