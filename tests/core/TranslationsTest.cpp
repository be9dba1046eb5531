#include <QDirIterator>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <memory>
#include <unicode/plurrule.h>

using namespace Qt::Literals::StringLiterals;

// The tables of the interface: each language has every word, with every place to fill.

namespace {

const QStringList &languages()
{
    static const QStringList all =
        u"ar de es fr he it ja ko ms nb nl pt-PT ru sv uk zh-Hans zh-Hant"_s.split(u' ');
    return all;
}

QJsonObject tableOf(const QString &language)
{
    QFile file(u":/translations/%1.json"_s.arg(language));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(language);
    return QJsonDocument::fromJson(file.readAll()).object();
}

QSet<QString> placesOf(const QString &text)
{
    static const QRegularExpression place(u"%[1-9@]"_s);
    QSet<QString> places;
    for (const auto &match : place.globalMatch(text))
        places.insert(match.captured());
    return places;
}

/// The plural forms that whole numbers of everyday size take in a language.
QSet<QString> pluralFormsOf(const QString &language)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::PluralRules> rules(
        icu::PluralRules::forLocale(icu::Locale(language.toUtf8().constData()), status));
    EXPECT_TRUE(U_SUCCESS(status));
    QSet<QString> forms;
    for (int number = 1; number < 1000; ++number) {
        const icu::UnicodeString form = rules->select(number);
        forms.insert(QString::fromUtf16(form.getBuffer(), form.length()));
    }
    return forms;
}

/// The English texts that the sources ask for by name, that name steps of undo, or with which a store begins.
QStringList wordsInSources()
{
    static const QRegularExpression asked(
        uR"(\b(?:localized(?:Count)?|saveStep|RecordsTransaction \w+)\(\s*(?:u|QStringLiteral\()((?:\s*u?"(?:[^"\\]|\\.)*")+))"_s);
    static const QRegularExpression seeded(uR"(\{("\w+"), \d+, \d+, \d+\})"_s);
    static const QRegularExpression literal(uR"x("((?:[^"\\]|\\.)*)")x"_s);
    QStringList words;
    QDirIterator files(QStringLiteral(MORVANE_SOURCES), {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QStringList found;
        for (const QRegularExpression &wanted : {asked, seeded})
            for (const auto &match : wanted.globalMatch(text))
                found.append(match.captured(1));
        for (const QString &literals : std::as_const(found)) {
            QString word;
            for (const auto &part : literal.globalMatch(literals))
                word += part.captured(1);
            word.replace(uR"(\")"_s, u"\""_s).replace(uR"(\n)"_s, u"\n"_s);
            words.append(word.replace(uR"(\u0421)"_s, u"\u0421"_s));
        }
    }
    return words;
}

} // namespace

TEST(Translations, EveryWordThatTheSourcesAskForIsInTheTables)
{
    const QJsonObject german = tableOf(u"de"_s);
    const QStringList words = wordsInSources();
    ASSERT_GT(words.size(), 400);
    for (const QString &word : words)
        EXPECT_TRUE(german.contains(word)) << qPrintable(word);
}

TEST(Translations, EveryLanguageHasEveryWordWithItsPlacesAndPluralForms)
{
    const QJsonObject german = tableOf(u"de"_s);
    for (const QString &language : languages()) {
        const QJsonObject table = tableOf(language);
        for (const QString &key : german.keys())
            EXPECT_TRUE(table.contains(key)) << qPrintable(language) << " lacks " << qPrintable(key);
        EXPECT_EQ(table.size(), german.size()) << qPrintable(language);
        const QSet<QString> forms = pluralFormsOf(language);
        for (auto entry = table.begin(); entry != table.end(); ++entry) {
            const std::string place = QString(language + u": "_s + entry.key()).toStdString();
            QSet<QString> wanted = placesOf(entry.key());
            EXPECT_EQ(entry.value().isObject(), german.value(entry.key()).isObject()) << place;
            if (!entry.value().isObject()) {
                EXPECT_EQ(placesOf(entry.value().toString()), wanted) << place;
                EXPECT_FALSE(entry.value().toString().isEmpty()) << place;
                continue;
            }
            const QJsonObject texts = entry.value().toObject();
            for (const QString &form : forms)
                EXPECT_FALSE(texts.value(form).toString().isEmpty()) << place << " " << qPrintable(form);
            for (auto text = texts.begin(); text != texts.end(); ++text) {
                QSet<QString> places = placesOf(text.value().toString());
                // A form for one or two may do without the number.
                if (!QStringList{u"few"_s, u"many"_s, u"other"_s}.contains(text.key()) &&
                    wanted.contains(u"%1"_s))
                    places.insert(u"%1"_s);
                EXPECT_EQ(places, wanted) << place << " " << qPrintable(text.key());
            }
        }
    }
}
