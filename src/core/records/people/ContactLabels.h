#pragma once

#include <QString>

#include <algorithm>
#include <array>

// The labels of address books in the order of the tables of types: the first belongs to the first type, and
// so on.

namespace ContactLabels {

inline const std::array<QString, 9> phone = {
    QStringLiteral("home"),     QStringLiteral("work"),  QStringLiteral("iPhone"),
    QStringLiteral("mobile"),   QStringLiteral("main"),  QStringLiteral("home fax"),
    QStringLiteral("work fax"), QStringLiteral("pager"), QStringLiteral("other")};
inline const std::array<QString, 4> email = {QStringLiteral("home"), QStringLiteral("work"),
                                             QStringLiteral("iCloud"), QStringLiteral("other")};
inline const std::array<QString, 3> address = {QStringLiteral("home"), QStringLiteral("work"),
                                               QStringLiteral("other")};
inline const std::array<QString, 6> url = {QStringLiteral("home"),     QStringLiteral("work"),
                                           QStringLiteral("Facebook"), QStringLiteral("Twitter"),
                                           QStringLiteral("LinkedIn"), QStringLiteral("other")};

/// The place of a label in a list, case ignored; -1 if it is not there.
template <typename Labels>
int placeOf(const QString &label, const Labels &labels)
{
    const auto found = std::ranges::find_if(
        labels, [&](const QString &one) { return one.compare(label, Qt::CaseInsensitive) == 0; });
    return found == labels.end() ? -1 : static_cast<int>(found - labels.begin());
}

} // namespace ContactLabels
