#pragma once

#include "eventkit/CalendarItem.h"
#include "eventkit/RuleLines.h"

#include <functional>

// What the edits of series share.

/// Rewrites the dates of the EXDATE or RDATE properties: keeps those of the chosen keys and moves them. A
/// property whose dates all stay as they are stays as it is.
void rewriteDates(IcalComponent &component, const QByteArray &name, const CalendarItem &item,
                  const std::function<bool(qint64 key)> &isKept, const SeriesMove &move);
/// Rewrites the bodies of the rules of that name; a rule whose body becomes absent goes.
void rewriteRules(IcalComponent &component, const QByteArray &name,
                  const std::function<std::optional<QByteArray>(const QByteArray &body)> &rewrite);
/// Notes the change in a component that is no longer as it was.
void markIfChanged(IcalComponent &component, const IcalComponent &former);
/// Says of an edit which occurrence of the series it begins with.
void writeRecurrenceId(IcalComponent &component, const IcalTime &time, const ItemPart &part);
/// The whole text of a component.
QByteArray textOf(const IcalComponent &component);
/// The parsed text; only for texts that were made out of an item.
CalendarItemPointer itemOf(const IcalDocument &document);
