#include "shell/calendars/GoToDateWindowController.h"

#include "foundation/Calendar.h"
#include "foundation/Localization.h"
#include "widgets/MonthGrid.h"
#include "widgets/TextLabel.h"

#include <QDateEdit>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

static QDate dayOf(Date date)
{
    const DateComponents fields = Calendar::current().shortComponents(date);
    return {*fields.year, *fields.month, *fields.day};
}

static Date dateOf(QDate day)
{
    return Calendar::current().dateFromComponents(
        {.year = day.year(), .month = day.month(), .day = day.day(), .hour = 0, .minute = 0, .second = 0});
}

GoToDateWindowController::GoToDateWindowController(Date date, QWidget *parent)
    : QDialog(parent)
    , chosen(date)
    , datePicker(new MonthGrid)
    , field(new QDateEdit(dayOf(date)))
{
    setObjectName(u"GoToDateWindowController"_s);
    setWindowTitle(localized(u"Go To Date"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    datePicker->setObjectName(u"datePicker"_s);
    datePicker->setAccessibleName(localized(u"Date"_s));
    datePicker->setDate(date);
    field->setObjectName(u"dateField"_s);
    field->setAccessibleName(localized(u"Date"_s));
    field->setDateRange(QDate(1, 1, 1), QDate(9999, 12, 31));
    auto *buttons = new QDialogButtonBox;
    auto *cancelButton = buttons->addButton(localized(u"Cancel"_s), QDialogButtonBox::RejectRole);
    auto *showButton = buttons->addButton(localized(u"Show"_s), QDialogButtonBox::AcceptRole);
    cancelButton->setObjectName(u"buttonCancel"_s);
    showButton->setObjectName(u"buttonShow"_s);
    showButton->setDefault(true);
    auto *column = new QVBoxLayout(this);
    column->setSpacing(Theme::unit);
    column->addWidget(makeTextLabel(localized(u"Go To Date"_s), Theme::FontRole::BodyStrong, Theme::text));
    column->addWidget(field);
    column->addWidget(datePicker, 0, Qt::AlignHCenter);
    column->addWidget(buttons);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        Q_EMIT dateChosen(chosen);
        accept();
    });
    connect(datePicker, &MonthGrid::dateChanged, this, [this](Date day) {
        chosen = day;
        const QSignalBlocker quiet(field);
        field->setDate(dayOf(day));
    });
    connect(datePicker, &MonthGrid::accepted, showButton, &QPushButton::click);
    connect(field, &QDateEdit::dateChanged, this, [this](QDate day) {
        chosen = dateOf(day);
        datePicker->setDate(chosen);
    });
    field->setFocus();
    field->setSelectedSection(QDateTimeEdit::DaySection);
}
