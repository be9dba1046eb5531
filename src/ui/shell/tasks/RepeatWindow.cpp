#include "shell/tasks/RepeatWindow.h"

#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "recurrence/RRule.h"
#include "widgets/Appearance.h"
#include "widgets/PopUpButton.h"
#include "widgets/RepeatCalendar.h"
#include "widgets/RepeatCalendarItem.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int contentWidth = 336;
constexpr int labelWidth = 88;
constexpr int numberWidth = 72;
constexpr std::size_t datesShown = 5;

RepeatWindow::RepeatWindow(CustomRepeat startingRepeat, QWidget *parent)
    : Popover(parent)
    , repeat(std::move(startingRepeat))
{
    setObjectName(u"RepeatWindow"_s);
    setAccessibleName(repeat.text(u"RecurrencePicker.textLabel.custom"_s));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    column->setSpacing(Theme::unit);
    column->setSizeConstraint(QLayout::SetFixedSize);
    grid = new RepeatCalendar(contentWidth);
    connect(grid, &RepeatCalendar::selectedChange, this, [this](int item, bool selected) {
        repeat.setSelected(item, selected);
        grid->setSelectedItems([this](int number) { return repeat.isSelected(number); });
        showOutcome();
    });
    column->addWidget(makeFrequency());
    column->addWidget(makeInterval());
    column->addWidget(grid);
    column->addWidget(makeOutcome());
    column->addWidget(makeButtons());
    rebuildGrid();
    popUpFrequency->setFocus();
}

QLabel *RepeatWindow::makeLabel(const QString &key, QWidget *buddy)
{
    auto *label = new QLabel(repeat.text(key));
    label->setFixedWidth(labelWidth);
    label->setBuddy(buddy);
    buddy->setAccessibleName(label->text());
    return label;
}

static QHBoxLayout *lineIn(QWidget &widget)
{
    auto *line = new QHBoxLayout(&widget);
    line->setContentsMargins({});
    line->setSpacing(Theme::unit);
    return line;
}

QWidget *RepeatWindow::makeFrequency()
{
    auto *widget = new QWidget;
    QHBoxLayout *line = lineIn(*widget);
    popUpFrequency = new PopUpButton(u"popUpFrequency"_s);
    popUpFrequency->addItems(repeat.frequencyTitles());
    popUpFrequency->setCurrentIndex(repeat.frequencyIndex());
    connect(popUpFrequency, &QComboBox::activated, this, &RepeatWindow::frequencyChange);
    line->addWidget(makeLabel(u"CustomRecurrenceViewController.textLabel.frequency"_s, popUpFrequency));
    line->addWidget(popUpFrequency, 1);
    return widget;
}

QWidget *RepeatWindow::makeInterval()
{
    auto *widget = new QWidget;
    QHBoxLayout *line = lineIn(*widget);
    fieldInterval = new QSpinBox;
    fieldInterval->setObjectName(u"fieldInterval"_s);
    fieldInterval->setRange(1, repeat.mostInterval());
    fieldInterval->setValue(repeat.rule().interval);
    fieldInterval->setFixedWidth(numberWidth);
    connect(fieldInterval, &QSpinBox::valueChanged, this, [this](int value) {
        repeat.setInterval(value);
        showOutcome();
    });
    labelUnit = new QLabel;
    line->addWidget(makeLabel(u"CustomRecurrenceViewController.textLabel.interval"_s, fieldInterval));
    line->addWidget(fieldInterval);
    line->addWidget(labelUnit, 1);
    return widget;
}

static QLabel *makeText(const QString &name, Theme::Role colour, Theme::FontRole role)
{
    auto *label = new QLabel;
    label->setObjectName(name);
    Appearance::setFont(*label, role);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setFixedWidth(contentWidth);
    Appearance::colourText(*label, colour);
    return label;
}

QWidget *RepeatWindow::makeOutcome()
{
    auto *widget = new QWidget;
    auto *column = new QVBoxLayout(widget);
    column->setContentsMargins(0, Theme::unit, 0, Theme::unit);
    column->setSpacing(Theme::unit / 2);
    labelSentence = makeText(u"labelSentence"_s, Theme::text, Theme::FontRole::BodyStrong);
    labelWarning = makeText(u"labelWarning"_s, Theme::warning, Theme::FontRole::Small);
    labelDates = makeText(u"labelDates"_s, Theme::secondaryText, Theme::FontRole::Small);
    column->addWidget(labelSentence);
    column->addWidget(labelWarning);
    column->addWidget(labelDates);
    return widget;
}

QWidget *RepeatWindow::makeButtons()
{
    auto *widget = new QWidget;
    QHBoxLayout *line = lineIn(*widget);
    auto *cancel = new QPushButton(localized(u"Cancel"_s));
    cancel->setObjectName(u"buttonCancel"_s);
    auto *accept = new QPushButton(localized(u"OK"_s));
    accept->setObjectName(u"buttonOK"_s);
    accept->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &RepeatWindow::cancelClick);
    connect(accept, &QPushButton::clicked, this, &RepeatWindow::okClick);
    line->addStretch(1);
    line->addWidget(cancel);
    line->addWidget(accept);
    return widget;
}

// What the user changes

void RepeatWindow::frequencyChange(int index)
{
    if (index != repeat.frequencyIndex() || !repeat.isFrequencyKnown())
        repeat.frequencyChange(index);
    rebuildGrid();
}

void RepeatWindow::rebuildGrid()
{
    std::vector<RepeatCalendarCell> cells;
    for (const int item : repeat.items())
        cells.push_back({item, repeat.titleOf(item), repeat.nameOf(item), repeat.isSelected(item)});
    grid->setItems(cells);
    // They are made anew, and stand behind the number all the same.
    QWidget *former = fieldInterval;
    for (RepeatCalendarItem *item : grid->items()) {
        setTabOrder(former, item);
        former = item;
    }
    labelUnit->setText(repeat.unitLabel());
    showOutcome();
}

void RepeatWindow::showOutcome()
{
    labelSentence->setText(repeat.sentence());
    labelWarning->setText(repeat.warning());
    labelWarning->setVisible(!labelWarning->text().isEmpty());
    QStringList lines;
    for (const Date date : repeat.nextDates(datesShown))
        lines << DateFormatter::string(date, DateFormatter::patternFromTemplate(u"EEEdMMMy"_s));
    labelDates->setText(lines.isEmpty()
                            ? QString()
                            : repeat.text(u"RepeatPicker.nextDates"_s) + u":\n"_s + lines.join(u'\n'));
    labelDates->setVisible(!lines.isEmpty());
}

// The end

void RepeatWindow::okClick()
{
    fieldInterval->interpretText();
    isAccepted = repeat.isChanged();
    close();
    if (isAccepted)
        Q_EMIT customRepeatChanged(RRule::stringFromRule(repeat.rule()));
}

void RepeatWindow::cancelClick()
{
    close();
}

/// Escape, "Cancel", a press outside, and "OK" where nothing was chosen are the same.
void RepeatWindow::closeEvent(QCloseEvent *event)
{
    Popover::closeEvent(event);
    if (!isAccepted)
        Q_EMIT customRepeatCancel();
}

void RepeatWindow::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (isReturn)
        button ? button->click() : okClick();
    else
        Popover::keyPressEvent(event);
}
