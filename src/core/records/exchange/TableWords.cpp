#include "records/exchange/TableWords.h"

#include "foundation/LanguageWords.h"
#include "foundation/Localization.h"

#include <algorithm>

QString tablewords::Wording::operator()(const QString &english) const
{
    return words ? words->value(english, english) : localized(english);
}

std::vector<tablewords::Wording> tablewords::wordings()
{
    std::vector<Wording> all(1);
    for (const auto &[language, words] : wordsOfAllLanguages())
        all.emplace_back(words);
    return all;
}

bool tablewords::means(const QString &text, const QString &english)
{
    const auto is = [&text](const QString &word) {
        return !word.isEmpty() && text.compare(word, Qt::CaseInsensitive) == 0;
    };
    return is(english) || is(localized(english)) ||
           std::ranges::any_of(wordsOfAllLanguages(),
                               [&](const auto &language) { return is(language.second.value(english)); });
}

QString tablewords::keyOf(const QString &title)
{
    // No title is so long.
    constexpr qsizetype longest = 200;
    QString key;
    if (title.size() > longest)
        return key;
    for (const QChar letter : title.toLower())
        if (letter.isLetterOrNumber())
            key += letter;
    return key;
}
