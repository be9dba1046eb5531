#pragma once

#include <QStringList>

#include <optional>
#include <set>

/// The names with which the word at the cursor of a captured line can go on: categories behind '#', projects
/// behind '+', people behind '@'.
struct CaptureOffer
{
    static constexpr int mostNames = 6;

    /// '#', '+' or '@'.
    QChar sign;
    /// Where in the line stands what a name replaces: all between the sign and the cursor.
    int from = 0;
    int length = 0;
    /// At least one, in the order of the user's language.
    QStringList names;
    /// What stands there is a name as it is, and the others are longer ones.
    bool isName = false;

    /// What can go on at the cursor; absent if nothing can. Of people, one letter at least has to be there.
    /// \param literal places in the line that are plain words.
    static std::optional<CaptureOffer> at(const QString &line, int cursor, const std::set<int> &literal = {});
};
