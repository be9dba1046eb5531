#pragma once

#include <QHash>
#include <QString>

#include <vector>

/// In which words a table can be written: those of the user's language first, then those of all others.
namespace tablewords {

class Wording
{
public:
    /// The user's language.
    Wording() = default;
    explicit Wording(const QHash<QString, QString> &wordsOfLanguage)
        : words(&wordsOfLanguage)
    {}
    /// The English word itself where the language has none.
    QString operator()(const QString &english) const;

private:
    const QHash<QString, QString> *words = nullptr;
};

std::vector<Wording> wordings();

/// Whether a text is an English word or the same in any language; the case of letters does not count.
bool means(const QString &text, const QString &english);

/// The one of some records whose title is an English text or its words in a language; null for none. One of
/// just this title comes first.
template <typename Records>
auto namedAmong(const Records &records, const QString &title)
{
    std::remove_cvref_t<decltype(*records.begin())> found;
    for (const auto &record : records) {
        if (title.compare(record->title(), Qt::CaseInsensitive) == 0 && !title.isEmpty())
            return record;
        if (!found && means(title, record->title()))
            found = record;
    }
    return found;
}

/// What is left of a title for comparing: letters and digits.
QString keyOf(const QString &title);

} // namespace tablewords
