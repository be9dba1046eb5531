#pragma once

#include <QHash>
#include <QString>

#include <map>

/// The short words of the program in every language that it has, by language and English key. They are read
/// when they are asked for first: what people bring along may be written in another language than theirs.
const std::map<QString, QHash<QString, QString>> &wordsOfAllLanguages();
