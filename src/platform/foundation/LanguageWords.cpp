#include "foundation/LanguageWords.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

/// Sentences are left out.
static QHash<QString, QString> shortWordsIn(const QString &path)
{
    constexpr qsizetype longest = 40;
    QHash<QString, QString> words;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return words;
    const QJsonObject table = QJsonDocument::fromJson(file.readAll()).object();
    for (auto word = table.begin(); word != table.end(); ++word) {
        const QString text = word.value().toString();
        if (!text.isEmpty() && text.size() <= longest)
            words.insert(word.key(), text);
    }
    return words;
}

const std::map<QString, QHash<QString, QString>> &wordsOfAllLanguages()
{
    static const auto words = [] {
        std::map<QString, QHash<QString, QString>> all;
        const QDir folder(QStringLiteral(":/translations"));
        for (const QString &name : folder.entryList({QStringLiteral("*.json")}, QDir::Files)) {
            // The others are tables of single pickers.
            if (name.count(u'.') == 1)
                all.emplace(name.section(u'.', 0, 0), shortWordsIn(folder.filePath(name)));
        }
        return all;
    }();
    return words;
}
