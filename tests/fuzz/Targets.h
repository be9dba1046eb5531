#pragma once

#include <QString>

/// Reads a text as a rule in all the ways there are, writes what was understood, reads that again and expands
/// it over a year (a day, for rules by hours and less). Answers what contradicts itself; empty if nothing
/// does.
QString contradictionIn(const QString &text);
