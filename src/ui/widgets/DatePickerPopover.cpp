#include "widgets/DatePickerPopover.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "widgets/MonthGrid.h"
#include "widgets/Theme.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTimeEdit>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

DatePickerPopover::DatePickerPopover(const DatePickerState &state, QWidget *parent)
    : Popover(parent)
    , minimum(state.minDate)
    , maximum(state.maxDate)
    , grid(new MonthGrid)
{
    setObjectName(u"datePickerPopover"_s);
    setAccessibleName(state.titlePopover);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(Theme::unit);
    auto *title = new QLabel(state.titlePopover);
    title->setFont(Theme::font(Theme::FontRole::BodyStrong));
    title->setAlignment(Qt::AlignCenter);
    column->addWidget(title);
    column->addWidget(grid, 0, Qt::AlignHCenter);
    if (state.showClock)
        column->addWidget(makeClock());
    if (state.showCheckBox) {
        check = new QCheckBox(state.checkBoxTitle);
        check->setChecked(state.isChecked);
        connect(check, &QCheckBox::toggled, this, &DatePickerPopover::checkToggled);
        column->addWidget(check);
    }
    column->addWidget(makeButtons());
    grid->setAccessibleName(state.titlePopover);
    grid->setLimits(minimum, maximum);
    grid->setShowsYears(state.showYears);
    connect(grid, &MonthGrid::accepted, this, &DatePickerPopover::accept);
    setDate(state.dateValue.value_or(Clock::now()));
    grid->setFocus();
}

QWidget *DatePickerPopover::makeClock()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins({});
    clock = new QTimeEdit;
    clock->setObjectName(u"clock"_s);
    clock->setDisplayFormat(MVDate::isPM_AM_String() ? u"h:mm AP"_s : u"HH:mm"_s);
    clock->setButtonSymbols(QAbstractSpinBox::NoButtons);
    clock->setWrapping(true);
    auto *label = new QLabel(localized(u"Time"_s));
    label->setBuddy(clock);
    row->addWidget(label);
    row->addWidget(clock, 1);
    return line;
}

QWidget *DatePickerPopover::makeButtons()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(0, Theme::unit / 2, 0, 0);
    auto *cancel = new QPushButton(localized(u"Cancel"_s));
    auto *done = new QPushButton(localized(u"DoneButton"_s));
    done->setObjectName(u"buttonDone"_s);
    done->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QWidget::close);
    connect(done, &QPushButton::clicked, this, &DatePickerPopover::accept);
    row->addWidget(cancel, 1);
    row->addWidget(done, 1);
    return line;
}

void DatePickerPopover::setDate(Date date)
{
    grid->setDate(date);
    const DateComponents time = Calendar::current().shortComponents(date);
    if (clock)
        clock->setTime(QTime(*time.hour, *time.minute));
}

Date DatePickerPopover::chosenDate() const
{
    const Calendar calendar = Calendar::current();
    DateComponents components = calendar.shortComponents(grid->date());
    if (clock) {
        components.hour = clock->time().hour();
        components.minute = clock->time().minute();
        components.second = 0;
    }
    Date date = calendar.dateFromComponents(components);
    if (maximum)
        date = std::min(date, *maximum);
    return minimum ? std::max(date, *minimum) : date;
}

void DatePickerPopover::accept()
{
    const Date date = chosenDate();
    close();
    Q_EMIT doneClicked(date);
}
