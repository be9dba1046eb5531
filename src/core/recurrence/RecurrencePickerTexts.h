#pragma once

#include "foundation/MessageFormat.h"
#include "recurrence/RecurrencePickerLanguage.h"

#include <QString>

/// The table "RecurrencePicker": the words of repetitions in one language.
class RecurrencePickerTexts
{
public:
    explicit RecurrencePickerTexts(RecurrencePickerLanguage language);

    /// The text of a key; the key itself where there is none.
    QString text(const QString &key) const;
    /// The same with values filled in.
    QString text(const QString &key, const std::vector<MessageFormat::Argument> &arguments) const;
    /// The language as ICU names it.
    QString locale() const;

private:
    RecurrencePickerLanguage language;
};
