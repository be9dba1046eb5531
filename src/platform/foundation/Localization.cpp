#include "foundation/Localization.h"

#include "foundation/Log.h"
#include "foundation/Region.h"

#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <mutex>

using Words = QHash<QString, QString>;

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

static void addWords(Words &words, const QString &path)
{
    const QJsonObject table = readTable(path);
    for (auto entry = table.begin(); entry != table.end(); ++entry)
        words.insert(entry.key(), entry.value().toString());
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
            addWords(words, folder + fileName(table, *language));
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
    return wordsOf(table).value(key, key);
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
