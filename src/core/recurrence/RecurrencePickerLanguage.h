#pragma once

#include <QString>

/// The languages in which repetitions are put into words.
enum class RecurrencePickerLanguage {
    english = 0,
    simplifiedChinese,
    traditionalChinese,
    korean,
    japanese,
    russian,
    french,
    german,
    ukrainian,
    spanish,
    italian,
    portugal,
    dutch,
    norwegian,
    swedish,
    malay,
    hebrew,
    arabic,
};

namespace RecurrencePickerLanguages {

constexpr int count = 18;

/// The code that selects a language and names its texts: "zh-Hans", "pt-PT", "nb".
QString code(RecurrencePickerLanguage language);
/// The language of a code, in any letters and with any region; English for a language that there is not.
RecurrencePickerLanguage ofCode(const QString &code);
/// The user's language.
RecurrencePickerLanguage current();

} // namespace RecurrencePickerLanguages
