#include "widgets/DatePickerPopover.h"

#include "foundation/Calendar.h"
#include "foundation/Clock.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "foundation/RelativeDates.h"
#include "records/capture/TypedDate.h"
#include "records/dates/MVDate.h"
#include "records/dates/QuickDays.h"
#include "widgets/Appearance.h"
#include "widgets/MonthGrid.h"
#include "widgets/Theme.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimeEdit>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

DatePickerPopover::DatePickerPopover(const DatePickerState &state, QWidget *parent)
    : Popover(parent)
    , minimum(state.minDate)
    , maximum(state.maxDate)
    , grid(new MonthGrid)
    , canBeSomeday(state.showCheckBox && state.typePicker == DatePickerState::Type::DueDate)
{
    setObjectName(u"datePickerPopover"_s);
    setAccessibleName(state.titlePopover);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(Theme::unit);
    auto *title = new QLabel(state.titlePopover);
    Appearance::setFont(*title, Theme::FontRole::BodyStrong);
    title->setAlignment(Qt::AlignCenter);
    column->addWidget(title);
    column->addWidget(makeTyping(state));
    // Years back nobody says in such words.
    if (!state.showYears)
        column->addWidget(makeQuickDays());
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

QWidget *DatePickerPopover::makeTyping(const DatePickerState &state)
{
    auto *both = new QWidget;
    auto *column = new QVBoxLayout(both);
    column->setContentsMargins({});
    column->setSpacing(Theme::unit / 2);
    words = new QLineEdit;
    words->setObjectName(u"typedDate"_s);
    words->setClearButtonEnabled(true);
    liesBack = state.showYears;
    const QString example =
        liesBack ? DateFormatter::string(state.dateValue.value_or(Clock::now()), DateFormatter::Style::Medium,
                                         DateFormatter::Style::None)
                 : RelativeDates::day(languageOfWords(), 1);
    words->setPlaceholderText(localized(u"Type a date: “%1”"_s).arg(example));
    words->setAccessibleName(localized(u"Date in words"_s));
    meaning = new QLabel;
    meaning->setObjectName(u"meaningOfTypedDate"_s);
    Appearance::setFont(*meaning, Theme::FontRole::Small);
    meaning->setAlignment(Qt::AlignHCenter);
    meaning->setWordWrap(true);
    meaning->hide();
    connect(words, &QLineEdit::textChanged, this, &DatePickerPopover::typed);
    connect(words, &QLineEdit::returnPressed, this, [this] {
        if (done->isEnabled())
            takeShown();
    });
    column->addWidget(words);
    column->addWidget(meaning);
    return both;
}

void DatePickerPopover::keyPressEvent(QKeyEvent *event)
{
    const QString text = event->text();
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // The field has heard it, and knows whether its words can be taken.
    if (isReturn && words && words->hasFocus())
        return;
    if (!words || text.isEmpty() || !text.front().isLetterOrNumber())
        return Popover::keyPressEvent(event);
    words->setFocus();
    words->insert(text);
}

/// A day without a year was the last one of it, and "84" is a year of the century before.
Date DatePickerPopover::formerOf(Date day) const
{
    for (const int years : {1, 100}) {
        const Date former = Calendar::current().dateByAdding(CalendarUnit::Year, -years, day);
        if (former <= *maximum)
            return former;
    }
    return day;
}

void DatePickerPopover::typed()
{
    const QString text = words->text();
    const bool isEmpty = text.trimmed().isEmpty();
    auto date = TypedDate::read(text);
    if (date && liesBack && maximum && date->day > *maximum)
        date->day = formerOf(date->day);
    isSomedayTyped = date && date->isSomeday && canBeSomeday;
    QString told;
    if (!date)
        told = localized(u"This is no date that can be read."_s);
    else if ((date->isSomeday && !canBeSomeday) || (date->minute && !clock))
        told = localized(u"Only a day can be chosen here."_s);
    else if (!date->isSomeday && !isWithinLimits(*date))
        told = localized(u"That day cannot be chosen here."_s);
    const bool isWrong = !told.isEmpty();
    // Words that say nothing are not passed over for the day that is marked.
    done->setEnabled(isEmpty || !isWrong);
    meaning->setVisible(!isEmpty);
    if (isSomedayTyped) {
        told = quickdays::title(QuickDay::Someday);
    } else if (!isWrong) {
        grid->setDate(date->day);
        if (date->minute)
            clock->setTime(QTime(*date->minute / 60, *date->minute % 60));
        told = DateFormatter::string(date->day, DateFormatter::patternFromTemplate(u"EEEEMMMMdyyyy"_s));
    }
    Appearance::colourText(*meaning, isWrong ? Theme::warning : Theme::secondaryText);
    meaning->setText(told);
    adjustSize();
}

QWidget *DatePickerPopover::makeQuickDays()
{
    auto *all = new QWidget;
    auto *places = new QGridLayout(all);
    places->setContentsMargins({});
    places->setSpacing(Theme::unit / 2);
    int place = 0;
    for (const QuickDay day : quickdays::all) {
        const OptionalDate date = quickdays::dayOf(day, Clock::now());
        if (!date && !canBeSomeday)
            continue;
        auto *button = new QPushButton(quickdays::title(day));
        button->setObjectName(u"quickDay%1"_s.arg(static_cast<int>(day)));
        button->setAutoDefault(false);
        if (!date) {
            connect(button, &QPushButton::clicked, this, &DatePickerPopover::takeSomeday);
            places->addWidget(button, place / 2, 0, 1, 2);
            continue;
        }
        button->setToolTip(DateFormatter::string(*date, DateFormatter::patternFromTemplate(u"EEEEMMMMd"_s)));
        button->setEnabled(isWithinLimits(TypedDate{*date}));
        connect(button, &QPushButton::clicked, this, [this, date] { take(*date); });
        places->addWidget(button, place / 2, place % 2);
        ++place;
    }
    return all;
}

bool DatePickerPopover::isWithinLimits(const TypedDate &date) const
{
    if (date.minute) {
        const Date moment = MVDate::setTimeWithCurrentDate(date.day, *date.minute / 60, *date.minute % 60, 0);
        return (!minimum || moment >= *minimum) && (!maximum || moment <= *maximum);
    }
    const Calendar calendar = Calendar::current();
    return (!minimum || date.day >= calendar.startOfDay(*minimum)) &&
           (!maximum || date.day <= calendar.startOfDay(*maximum));
}

void DatePickerPopover::take(Date day)
{
    leaveSomeday();
    grid->setDate(day);
    accept();
}

/// A day that was said is meant, whatever the box says.
void DatePickerPopover::leaveSomeday()
{
    if (!canBeSomeday || !check->isChecked())
        return;
    const Date marked = grid->date();
    check->setChecked(false);
    grid->setDate(marked);
}

/// Whoever made the bubble hears of the box, and closes the bubble where the rules say so.
void DatePickerPopover::takeSomeday()
{
    const QPointer<DatePickerPopover> self = this;
    check->setChecked(true);
    if (self)
        close();
}

void DatePickerPopover::takeShown()
{
    if (isSomedayTyped)
        return takeSomeday();
    if (words && !words->text().trimmed().isEmpty())
        leaveSomeday();
    accept();
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
    done = new QPushButton(localized(u"DoneButton"_s));
    done->setObjectName(u"buttonDone"_s);
    done->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QWidget::close);
    connect(done, &QPushButton::clicked, this, &DatePickerPopover::takeShown);
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
