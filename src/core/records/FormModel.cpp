#include "records/FormModel.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "objectstore/ManagedObject.h"

// What most rows of most records answer.

FormMark FormModel::mark(int) const
{
    return {};
}

bool FormModel::isShown(int) const
{
    return true;
}

bool FormModel::isGiven(int) const
{
    return false;
}

bool FormModel::isEnabled(int) const
{
    return true;
}

QString FormModel::error(int) const
{
    return {};
}

void FormModel::setText(int, const QString &) {}

std::vector<FormChoice> FormModel::choices(int)
{
    return {};
}

int FormModel::chosen(int) const
{
    return -1;
}

void FormModel::choose(int, int) {}

std::string_view FormModel::entityOfChoices(int) const
{
    return {};
}

FormDate FormModel::date(int) const
{
    return {};
}

DatePickerState FormModel::openPicker(int)
{
    return DatePickerState(DatePickerState::Type::StartDate);
}

void FormModel::acceptDate(int, DatePickerState &, Date) {}

void FormModel::toggleCheck(int, DatePickerState &, bool) {}

void FormModel::clear(int) {}

FormModel::EditEnd FormModel::finishEdit()
{
    followRow();
    if (!isChanged())
        return EditEnd::Unchanged;
    if (!save())
        return EditEnd::Refused;
    return isGone() ? EditEnd::Removed : EditEnd::Saved;
}

bool FormModel::isGone() const
{
    const ObjectPtr stored = record();
    return !stored || stored->isDeleted() || !stored->context();
}

QString FormModel::createdOn(OptionalDate date)
{
    using Style = DateFormatter::Style;
    return date ? localized(QStringLiteral("Created on")) + QLatin1Char(' ') +
                      DateFormatter::string(*date, Style::Medium, Style::Short)
                : QString();
}
