#include "foundation/Localization.h"

#include "foundation/IcuText.h"
#include "foundation/Log.h"
#include "foundation/Region.h"

#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <map>
#include <mutex>
#include <unicode/plurrule.h>

/// The text of a key. One that counts has its texts by plural form.
struct Entry
{
    QString text;
    QHash<QString, QString> forms;
    QString language;
};

using Words = QHash<QString, Entry>;

/// All words read so far, for one state of the region and one list of folders.
struct WordTables
{
    std::mutex mutex;
    QStringList folders = {QStringLiteral(":/translations")};
    quint64 generation = 0;
    QHash<QString, Words> byTable;
};

static WordTables &tables()
{
    static WordTables instance;
    return instance;
}

static QJsonObject readTable(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject())
        Log::line(QStringLiteral("Cannot read the words in %1: %2").arg(path, error.errorString()));
    return document.object();
}

static Entry entryOf(const QJsonValue &value, const QString &language)
{
    Entry entry{value.toString(), {}, language};
    const QJsonObject forms = value.toObject();
    for (auto form = forms.begin(); form != forms.end(); ++form)
        entry.forms.insert(form.key(), form.value().toString());
    return entry;
}

static void addWords(Words &words, const QString &path, const QString &language)
{
    const QJsonObject table = readTable(path);
    for (auto entry = table.begin(); entry != table.end(); ++entry)
        words.insert(entry.key(), entryOf(entry.value(), language));
}

/// The plural category of a number, "few" for example.
static QString pluralForm(const QString &language, qint64 count)
{
    thread_local std::map<QString, std::unique_ptr<icu::PluralRules>> rulesOfLanguages;
    auto &rules = rulesOfLanguages[language];
    if (!rules) {
        UErrorCode status = U_ZERO_ERROR;
        rules.reset(icu::PluralRules::forLocale(icu::Locale(language.toUtf8().constData()), status));
    }
    return rules ? qtText(rules->select(static_cast<double>(count))) : QStringLiteral("other");
}

static QString textFor(const Entry &entry, qint64 count)
{
    if (entry.forms.isEmpty())
        return entry.text;
    const QString exact = entry.forms.value(QLatin1Char('=') + QString::number(count));
    if (!exact.isEmpty())
        return exact;
    return entry.forms.value(pluralForm(entry.language, count), entry.forms.value(QStringLiteral("other")));
}

static QString fileName(const QString &table, const QString &language)
{
    const QString prefix = table.isEmpty() ? QString() : table + QLatin1Char('.');
    return QLatin1Char('/') + prefix + language + QStringLiteral(".json");
}

/// The worst language first, so that better ones replace its entries.
static Words readWords(const QString &table, const QStringList &folders)
{
    Words words;
    const QStringList languages = Region::preferredLocalizations();
    for (auto language = languages.rbegin(); language != languages.rend(); ++language)
        for (const QString &folder : folders)
            addWords(words, folder + fileName(table, *language), *language);
    return words;
}

static const Words &wordsOf(const QString &table)
{
    auto &read = tables();
    if (const quint64 present = Region::generation(); present != read.generation) {
        read.byTable.clear();
        read.generation = present;
    }
    auto known = read.byTable.constFind(table);
    if (known == read.byTable.constEnd())
        known = read.byTable.insert(table, readWords(table, read.folders));
    return *known;
}

QString localized(const QString &key)
{
    return localized(key, QString());
}

QString localized(const QString &key, const QString &table)
{
    const std::lock_guard lock(tables().mutex);
    const Words &words = wordsOf(table);
    const auto entry = words.constFind(key);
    return entry == words.constEnd() || !entry->forms.isEmpty() ? key : entry->text;
}

QString localizedCount(const QString &key, qint64 count)
{
    const std::lock_guard lock(tables().mutex);
    const Words &words = wordsOf(QString());
    const auto entry = words.constFind(key);
    QString text = entry == words.constEnd() ? key : textFor(*entry, count);
    return text.replace(QStringLiteral("%1"), QString::number(count));
}

QString languageOfWords()
{
    const std::lock_guard lock(tables().mutex);
    for (const QString &language : Region::preferredLocalizations()) {
        for (const QString &folder : tables().folders) {
            if (QFile::exists(folder + fileName(QString(), language)))
                return language;
        }
    }
    return QStringLiteral("en");
}

void LocalizationTable::loadDirectory(const QString &path)
{
    const std::lock_guard lock(tables().mutex);
    tables().folders.append(path);
    tables().byTable.clear();
}

void LocalizationTable::unloadDirectory(const QString &path)
{
    const std::lock_guard lock(tables().mutex);
    tables().folders.removeAll(path);
    tables().byTable.clear();
}
