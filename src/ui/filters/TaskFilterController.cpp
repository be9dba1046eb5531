#include "filters/TaskFilterController.h"

#include "filters/ListFilter.h"
#include "filters/MultiPickField.h"
#include "foundation/Localization.h"
#include "records/dates/MVDate.h"
#include "widgets/CategoryIcon.h"
#include "widgets/DatePicker.h"
#include "widgets/DatePickerPopover.h"
#include "widgets/FormScroll.h"
#include "widgets/Icons.h"
#include "widgets/MVSegmentView.h"
#include "widgets/PopUpButton.h"
#include "widgets/Popover.h"
#include "widgets/RowItemView.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

using PickerType = DatePickerState::Type;

TaskFilterController::TaskFilterController(ListFilter &usedFilter, QWidget *parent)
    : QWidget(parent)
    , filter(usedFilter)
{
    setFixedWidth(contentWidth);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    filter.reloadEntry();
    for (const FilterRow &row : filter.enabledRows())
        addRow(row);
}

static QLayout *makeButton(const TaskFilterController::Action &action, Popover *bubble)
{
    auto *button = new QPushButton(action.words);
    button->setObjectName(u"buttonAction"_s);
    button->setDefault(true);
    auto *row = new QHBoxLayout;
    row->setContentsMargins(2 * Theme::unit, Theme::unit, 2 * Theme::unit, Theme::unit);
    row->setSpacing(2 * Theme::unit);
    row->addWidget(makeTextLabel(action.hint, Theme::FontRole::Small, Theme::secondaryText), 1);
    row->addWidget(button);
    QObject::connect(button, &QPushButton::clicked, bubble, [bubble, perform = action.perform] {
        bubble->close();
        perform();
    });
    return row;
}

Popover *TaskFilterController::makePopover(ListFilter &filter, QWidget *parent,
                                           const std::optional<Action> &action)
{
    auto *bubble = new Popover(parent);
    bubble->setObjectName(u"filterPopover"_s);
    bubble->setAccessibleName(localized(u"Filter"_s));
    bubble->setAttribute(Qt::WA_DeleteOnClose);
    auto *column = new QVBoxLayout(bubble);
    column->setContentsMargins(1, Theme::unit, 1, Theme::unit);
    auto *rows = new TaskFilterController(filter, bubble);
    auto *scroll = new FormScroll(rows);
    scroll->setFixedWidth(contentWidth);
    column->addWidget(scroll);
    if (action)
        column->addLayout(makeButton(*action, bubble));
    const int room = parent->screen()->availableGeometry().height() - 4 * Theme::unit;
    bubble->setMaximumHeight(room);
    constexpr int roomOfButton = 6 * Theme::unit;
    scroll->setMinimumHeight(
        std::min(rows->sizeHint().height(), room - 2 * Theme::unit - (action ? roomOfButton : 0)));
    if (!rows->enabledRows.empty())
        rows->enabledRows.front()->setFocus();
    return bubble;
}

void TaskFilterController::addRow(const FilterRow &description)
{
    QWidget *control = makeControl(description);
    auto *row = new RowItemView(description.tag, description.key, rowHeight, this);
    if (!description.label.isEmpty())
        row->setLabel(description.label);
    row->setControl(control);
    row->setFocusProxy(control);
    layout()->addWidget(row);
    enabledRows.push_back(row);
}

QWidget *TaskFilterController::makeControl(const FilterRow &row)
{
    using Editor = FilterRow::Editor;
    switch (row.editor) {
    case Editor::Text:
        return makeText(row);
    case Editor::Segment:
        return makeSegment(row);
    case Editor::Period:
        return makePeriod();
    case Editor::Contacts:
    case Editor::Companies:
    case Editor::ContactCategories:
        return new MultiPickField(filter, row);
    case Editor::PopUp:
        break;
    }
    return makePopUp(row.key);
}

QLineEdit *TaskFilterController::makeText(const FilterRow &row)
{
    auto *field = new QLineEdit(filter.value(row.key).toString());
    field->setObjectName(u"field"_s + row.key);
    field->setPlaceholderText(row.placeholder);
    field->setAccessibleName(localized(row.key));
    field->setToolTip(localized(u"Finds titles that begin with this"_s));
    field->setClearButtonEnabled(true);
    connect(field, &QLineEdit::textChanged, this,
            [this, key = row.key](const QString &text) { filter.changeValueForKey(text, key); });
    return field;
}

QWidget *TaskFilterController::makeSegment(const FilterRow &row)
{
    const FilterPopUp content = filter.popUp(row.key);
    auto *segment = new MVSegmentView(content.items);
    segment->setObjectName(u"segment"_s + row.key);
    segment->setAccessibleName(row.label);
    segment->setSelectedIndex(content.selectedIndex);
    connect(segment, &MVSegmentView::selectedIndexChanged, this,
            [this, key = row.key](int item) { filter.chooseItem(item, key); });
    auto *line = new QWidget;
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins({});
    layout->addWidget(segment);
    layout->addStretch(1);
    line->setFocusProxy(segment);
    return line;
}

PopUpButton *TaskFilterController::makePopUp(const QString &key)
{
    auto *popUp = new PopUpButton(u"popUp"_s + key);
    const FilterPopUp content = filter.popUp(key);
    popUp->addItems(content.items);
    for (std::size_t place = 0; place < content.objects.size(); ++place) {
        if (const auto category = std::dynamic_pointer_cast<EntityCategory>(content.objects[place]))
            popUp->setItemIcon(content.wordCount + static_cast<int>(place), CategoryIcon::of(*category));
    }
    popUp->setCurrentIndex(content.selectedIndex);
    connect(popUp, &QComboBox::activated, this, [this, key](int item) { filter.chooseItem(item, key); });
    return popUp;
}

// The period

QWidget *TaskFilterController::makePeriod()
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins({});
    row->setSpacing(Theme::unit);
    fromPicker = new DatePicker(PickerType::StartDate);
    fromPicker->setObjectName(u"pickerFrom"_s);
    fromPicker->setAccessibleName(localized(u"From"_s));
    fromPicker->setClearable(false);
    toPicker = new DatePicker(PickerType::DueDate);
    toPicker->setObjectName(u"pickerTo"_s);
    toPicker->setAccessibleName(localized(u"To"_s));
    toPicker->setClearable(false);
    clearButton = new QToolButton;
    clearButton->setObjectName(u"buttonClearPeriod"_s);
    clearButton->setIcon(Icons::icon(u"clear"_s, Theme::secondaryText));
    clearButton->setAutoRaise(true);
    clearButton->setAccessibleName(localized(u"Clear the period"_s));
    clearButton->setToolTip(clearButton->accessibleName());
    row->addWidget(fromPicker, 1);
    row->addWidget(new QLabel(u"-"_s));
    row->addWidget(toPicker, 1);
    row->addWidget(clearButton);
    QSizePolicy keepsPlace = clearButton->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true);
    clearButton->setSizePolicy(keepsPlace);
    for (DatePicker *picker : {fromPicker, toPicker})
        connect(picker, &DatePicker::pressed, this, [this, picker] { pickDate(*picker); });
    connect(clearButton, &QToolButton::clicked, this, &TaskFilterController::clearPeriod);
    line->setFocusProxy(fromPicker);
    setDataPeriod();
    return line;
}

void TaskFilterController::setDataPeriod()
{
    filter.setDataPeriod();
    showPeriod();
}

/// Without a period the pickers say what a press begins with.
void TaskFilterController::showPeriod()
{
    const FilterPeriodPickers &dates = filter.periodPickers();
    const bool isInForce = filter.criterion(u"Period"_s).value(u"Enabled"_s).toBool();
    fromPicker->setDate(dates.from, false);
    toPicker->setDate(dates.to, false);
    for (DatePicker *picker : {fromPicker, toPicker})
        picker->setInForce(isInForce);
    if (!isInForce && clearButton->hasFocus())
        fromPicker->setFocus();
    clearButton->setVisible(isInForce);
}

void TaskFilterController::pickDate(DatePicker &picker)
{
    const bool isFrom = &picker == fromPicker;
    const FilterPeriodPickers &dates = filter.periodPickers();
    DatePickerState state(picker.typePicker());
    state.showClock = false;
    state.titlePopover = picker.accessibleName();
    state.dateValue = isFrom ? dates.from : dates.to;
    if (isFrom)
        state.maxDate = dates.maximumOfFrom;
    else
        state.minDate = dates.minimumOfTo;
    auto *bubble = new DatePickerPopover(state, &picker);
    bubble->setAttribute(Qt::WA_DeleteOnClose);
    connect(bubble, &DatePickerPopover::doneClicked, this, [this, isFrom](Date date) {
        // Days are picked, and a period holds them whole.
        isFrom ? filter.setDateFrom(MVDate::getStartOfDay(date))
               : filter.setDateTo(MVDate::getEndOfDay(date));
        showPeriod();
    });
    bubble->showBeside(picker);
}

void TaskFilterController::clearPeriod()
{
    filter.buttonClearPeriod();
    setDataPeriod();
}
