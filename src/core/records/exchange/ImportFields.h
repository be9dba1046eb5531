#pragma once

#include "records/copies/MVTask.h"
#include "records/exchange/ImportedTask.h"

/// Brings what a file says of a task into a working copy. What it names and what is not there is made.
namespace importfields {

void fillCategoryAndTags(MVTask &copy, const ImportedTask &task);
/// All but dates, rule and project.
void fillWords(MVTask &copy, const ImportedTask &task);
void fillDates(MVTask &copy, const ImportedTask &task);
void fillRule(MVTask &copy, const ImportedTask &task);
/// The calendar that is named, if it is there and can be written. False if it is not.
bool fillCalendar(MVTask &copy, const ImportedTask &task);

/// Whether two texts are the same rule, their ends aside.
bool isSameRule(const QString &one, const QString &other);
/// Of a copy that has a row: whether it says anything else.
bool isOther(const MVTask &copy);
/// Whether a task may belong to a project by its dates.
bool fitsInto(const EntityProject &project, OptionalDate start, OptionalDate due);
/// The moment from which a task repeats.
OptionalDate baseDateOf(const EntityTask &row);
/// The first company of a title, which is made where there is none; null for no title.
CompanyPtr companyTitled(const QString &title);
/// By its title in any language of the program; null for none.
CategoryPtr categoryNamed(const QString &title);

} // namespace importfields
