#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

/// The text with case and diacritics folded away, the same in every language: "Café" and "CAFE" both give
/// "cafe", "Straße" gives "strasse", "Łódź" gives "lodz". Compatibility forms are taken apart (Unicode NFKD)
/// and case is folded in full. Positions in the answer are not positions in the text.
QString foldedForSearch(QStringView text);

/// Changes whenever `foldedForSearch` may give something else for a text; what was kept folded is then stale.
QString textFoldingVersion();

/// Whether the text, folded, holds a needle that is folded already. An empty needle is in every text.
bool containsFolded(QStringView text, QStringView foldedNeedle);
bool beginsWithFolded(QStringView text, QStringView foldedNeedle);

/// Order of two texts in the locale of `Region`, without regard to case but with regard to accents (Unicode
/// Collation Algorithm, secondary strength): below 0, 0 or above 0. 0 does not mean that the texts are
/// identical.
int localizedCaseInsensitiveCompare(QStringView one, QStringView other);

/// A key whose order under byte comparison is that of `localizedCaseInsensitiveCompare`, for sorting many
/// texts. Good for as long as `Region::generation` stays.
QByteArray collationSortKey(QStringView text);

/// Order of two texts by code point without regard to case, whatever the locale.
int caseInsensitiveCompare(QStringView one, QStringView other);
