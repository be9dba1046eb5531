#pragma once

#include "foundation/Date.h"

#include <QString>

#include <optional>

/// A date that was typed in words, for example "fri 5pm", "in 2 weeks" or "31.12.".
struct TypedDate
{
    /// At its beginning; says nothing for some day.
    Date day = {};
    /// Minutes after midnight; absent where no time was typed.
    std::optional<int> minute = {};
    /// "someday": no day at all.
    bool isSomeday = false;

    /// Absent where not every word was understood, and where no one day is meant.
    static std::optional<TypedDate> read(const QString &text);
};
