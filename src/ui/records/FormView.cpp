#include "records/FormView.h"

#include "foundation/Localization.h"
#include "records/DatePickerControl.h"
#include "records/ItemsField.h"
#include "records/LinksField.h"
#include "records/PortraitField.h"
#include "store/state/NotificationNames.h"
#include "widgets/CategoryIcon.h"
#include "widgets/CheckButton.h"
#include "widgets/DatePicker.h"
#include "widgets/GrowingTextField.h"
#include "widgets/PopUpButton.h"
#include "widgets/RowItemView.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;
using Editor = FormRow::Editor;

/// The circle stands above the labels, although its ring needs room around it.
constexpr int checkBoxInset = 11;
/// Milliseconds between two looks whether a pop-up was closed.
constexpr int lookAgain = 200;

namespace {

/// What the user pastes, if it is a picture and no text; else null.
const QMimeData *pastedPicture(const QKeyEvent &event)
{
    const QMimeData *held =
        event.matches(QKeySequence::Paste) ? QApplication::clipboard()->mimeData() : nullptr;
    return held && !held->hasText() && PortraitField::canTake(*held) ? held : nullptr;
}

/// Return in a line is its own: the pane below would begin the next edit with it.
class LineField : public QLineEdit
{
public:
    explicit LineField(std::function<void()> onReturn)
        : accepted(std::move(onReturn))
    {}

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            accepted();
        else if (pastedPicture(*event))
            event->ignore();
        else
            QLineEdit::keyPressEvent(event);
    }

private:
    std::function<void()> accepted;
};

} // namespace

FormView::FormView(FormModel &shownModel, OwnControl ownControl, QWidget *parent)
    : FormCard(parent)
    , model(shownModel)
    , makeOwn(std::move(ownControl))
{
    for (const FormRow &row : model.rows())
        addRow(row);
    model.changed = [this] {
        refresh();
        Q_EMIT changed();
    };
    changesHeard = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { storeChanged(changes); });
    model.pickerWanted = [this](int row) { QTimer::singleShot(0, this, [this, row] { openPicker(row); }); };
    refresh();
}

/// The bubble of another row has just closed. What the window system still has to say about that would close
/// the next one too, so it is heard first.
void FormView::openPicker(int row)
{
    const auto found = pickers.find(row);
    const QPointer<DatePickerControl> control = found == pickers.end() ? nullptr : found->second;
    QGuiApplication::sync();
    if (control)
        control->open();
}

// Rows

/// Whether the control of a row can be higher than the row, and shows its value in both modes itself.
static bool isTall(const FormRow &row)
{
    const Editor editor = row.editor;
    return row.isTall || editor == Editor::Title || editor == Editor::Text || editor == Editor::Picture ||
           editor == Editor::Items || editor == Editor::Links || editor == Editor::Separator;
}

void FormView::addRow(const FormRow &row)
{
    if (row.editor == Editor::Name)
        return addName(row);
    auto *view = new RowItemView(row.id, row.name, row.height, this);
    if (const QString label = model.label(row.id); !label.isEmpty())
        view->setLabel(label);
    view->setControl(makeControl(row));
    layout()->addWidget(view);
    connect(view, &RowItemView::goClicked, this,
            [this, number = row.id] { Q_EMIT linkOpened(model.chosenRecord(number)); });
    if (isTall(row))
        view->setGrows();
    if (row.editor == Editor::Title && checkDone)
        view->setInset(checkBoxInset);
    rows.push_back({row, view});
    if (row.isClearable)
        makeDeletable(rows.back());
}

void FormView::makeDeletable(const Row &row)
{
    const auto clear = [this, number = row.about.id] { model.clear(number); };
    row.view->setDeletable();
    connect(row.view, &RowItemView::deleteClicked, this, clear);
    if (auto *popUp = row.view->findChild<PopUpButton *>())
        connect(popUp, &PopUpButton::deletePressed, this, clear);
}

QWidget *FormView::makeControl(const FormRow &row)
{
    switch (row.editor) {
    case Editor::Title:
        return makeTitle(row);
    case Editor::Line:
        return makeLine(row);
    case Editor::Picture:
        return makePicture(row);
    case Editor::Items:
        return makeItems(row);
    case Editor::Name:
    case Editor::Separator:
        return new QWidget;
    case Editor::Text:
        return makeParagraphs(row);
    case Editor::Choice:
        return makeChoice(row);
    case Editor::Date:
        return makeDate(row);
    case Editor::Links:
        return makeLinks(row);
    case Editor::Own:
        break;
    }
    return makeOwnControl(row);
}

QWidget *FormView::makeTitle(const FormRow &row)
{
    auto *line = new QWidget;
    auto *place = new QHBoxLayout(line);
    place->setContentsMargins({});
    if (model.hasCheckBox()) {
        checkDone = new CheckButton;
        checkDone->setObjectName(u"checkDone"_s);
        checkDone->setAccessibleName(localized(u"Done"_s));
        QSizePolicy policy = checkDone->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        checkDone->setSizePolicy(policy);
        connect(checkDone, &QAbstractButton::clicked, this, &FormView::doneToggled);
        place->addWidget(checkDone, 0, Qt::AlignVCenter);
    }
    GrowingTextField *const field = makeText(row, true);
    field->setAccessibleName(localized(row.name));
    place->addWidget(field, 1, Qt::AlignVCenter);
    firstField = field;
    return line;
}

GrowingTextField *FormView::makeText(const FormRow &row, bool isTitle)
{
    auto *field =
        new GrowingTextField(isTitle ? GrowingTextField::Kind::Title : GrowingTextField::Kind::Details);
    field->setObjectName(row.controlName);
    if (!isTitle)
        field->setFramed(true);
    field->setPlaceholderText(row.placeholder);
    connect(field, &QTextEdit::textChanged, this,
            [this, field, number = row.id] { model.setText(number, field->text()); });
    connect(field, &GrowingTextField::accepted, this, &FormView::accepted);
    syncs.push_back([this, field, number = row.id] { field->showText(model.text(number)); });
    texts.push_back(field);
    return field;
}

/// As high as its row, however little stands in it.
QWidget *FormView::makeParagraphs(const FormRow &row)
{
    GrowingTextField *const field = makeText(row, false);
    field->setMinimumHeight(row.height - Theme::unit);
    return field;
}

QWidget *FormView::makeLine(const FormRow &row)
{
    return makeLineField(row);
}

QLineEdit *FormView::makeLineField(const FormRow &row)
{
    auto *field = new LineField([this] { Q_EMIT accepted(); });
    field->setObjectName(row.controlName);
    field->setPlaceholderText(row.placeholder);
    connect(field, &QLineEdit::textChanged, this,
            [this, number = row.id](const QString &text) { model.setText(number, text); });
    syncs.push_back([this, field, number = row.id] {
        if (field->text() != model.text(number))
            field->setText(model.text(number));
    });
    if (!firstField)
        firstField = field;
    return field;
}

/// The name stands in the middle of the picture's height.
QWidget *FormView::makePicture(const FormRow &)
{
    auto *line = new QWidget;
    auto *place = new QHBoxLayout(line);
    place->setContentsMargins(0, Theme::unit / 2, 0, Theme::unit / 2);
    place->setSpacing(2 * Theme::unit);
    portrait = new PortraitField(*model.picture());
    portrait->setObjectName(u"imageViewAvatar"_s);
    place->addWidget(portrait);
    names = new QVBoxLayout;
    names->setSpacing(Theme::unit);
    labelName = makeTextLabel({}, Theme::FontRole::Title, Theme::text);
    labelName->setObjectName(u"labelName"_s);
    labelName->setMinimumWidth(1);
    names->addStretch(1);
    names->addWidget(labelName);
    names->addStretch(1);
    place->addLayout(names, 1);
    syncs.push_back([this] {
        portrait->showPicture(editing);
        labelName->setText(readablePart(model.title()));
        labelName->setVisible(!editing);
        for (QLineEdit *field : nameFields)
            field->setVisible(editing);
    });
    return line;
}

void FormView::addName(const FormRow &row)
{
    QLineEdit *const field = makeLineField(row);
    field->setAccessibleName(row.placeholder);
    names->insertWidget(names->count() - 1, field);
    nameFields.push_back(field);
}

QWidget *FormView::makeItems(const FormRow &row)
{
    auto *field = new ItemsField(model, row);
    syncs.push_back([this, field] { field->showItems(editing); });
    return field;
}

QWidget *FormView::makeDate(const FormRow &row)
{
    auto *picker = new DatePicker(row.picker);
    picker->setObjectName(row.controlName);
    auto *control = new DatePickerControl(model, row.id, *picker);
    syncs.push_back([control] { control->showValue(); });
    pickers[row.id] = control;
    return picker;
}

/// What can be added changes with what is linked.
QWidget *FormView::makeLinks(const FormRow &row)
{
    auto *field = new LinksField(model, row);
    fillings.push_back({field->popUp(), row.id, true});
    connect(field, &LinksField::opened, this, &FormView::linkOpened);
    connect(field, &LinksField::linksChanged, this, [this, number = row.id] {
        std::ranges::find(fillings, number, &Filling::row)->isDue = true;
        QMetaObject::invokeMethod(this, &FormView::fillDue, Qt::QueuedConnection);
    });
    syncs.push_back([this, field] { field->showLinks(editing); });
    return field;
}

QWidget *FormView::makeOwnControl(const FormRow &row)
{
    std::function<void()> sync;
    QWidget *control = makeOwn ? makeOwn(model, row, sync) : new QWidget;
    if (sync)
        syncs.push_back(std::move(sync));
    return control;
}

// Choices

QIcon FormView::iconOf(const FormMark &mark)
{
    if (const auto *color = std::get_if<EKColor>(&mark))
        return CategoryIcon::circle(QColor::fromRgbF(static_cast<float>(color->red),
                                                     static_cast<float>(color->green),
                                                     static_cast<float>(color->blue)));
    if (const auto *priority = std::get_if<Priority>(&mark))
        return CategoryIcon::circle(Theme::priority(*priority));
    const auto *category = std::get_if<CategoryPtr>(&mark);
    return category && *category ? CategoryIcon::of(**category) : QIcon();
}

void FormView::fill(PopUpButton &popUp, int row)
{
    popUp.clear();
    const std::vector<FormChoice> choices = model.choices(row);
    for (const FormChoice &choice : choices) {
        if (choice.isHeading)
            popUp.addHeading(choice.text);
        else
            popUp.addItem(iconOf(choice.mark), choice.text);
    }
    popUp.setEnabled(model.isEnabled(row));
    if (!choices.empty() && choices.front().isHeading)
        popUp.setToolTip(choices.front().text);
}

QWidget *FormView::makeChoice(const FormRow &row)
{
    auto *popUp = new PopUpButton(row.controlName);
    fillings.push_back({popUp, row.id, true});
    connect(popUp, &QComboBox::activated, this,
            [this, number = row.id](int place) { model.choose(number, place); });
    syncs.push_back([this, popUp, number = row.id, missed = QString()]() mutable {
        const int place = model.chosen(number);
        popUp->setCurrentIndex(place);
        // A value that has come since the pop-up was filled is offered from now on.
        const QString value = place < 0 ? model.text(number) : QString();
        if (std::exchange(missed, value) == value || value.isEmpty())
            return;
        std::ranges::find(fillings, number, &Filling::row)->isDue = true;
        QMetaObject::invokeMethod(this, &FormView::fillDue, Qt::QueuedConnection);
    });
    return popUp;
}

void FormView::storeChanged(const StoreChanges &changes)
{
    for (Filling &filling : fillings) {
        const std::string_view entity = model.entityOfChoices(filling.row);
        if (entity.empty())
            continue;
        const auto isOffered = [entity](const ObjectPtr &object) {
            return object->entity().name() == entity;
        };
        const auto isRenamed = [&](const StoreChanges::Update &one) {
            return isOffered(one.object) && one.columns.any();
        };
        if (changes.isUnknown || std::ranges::any_of(changes.inserted, isOffered) ||
            std::ranges::any_of(changes.deleted, isOffered) ||
            std::ranges::any_of(changes.updated, isRenamed))
            filling.isDue = true;
    }
    fillDue();
}

/// What is only looked at needs no choices. A pop-up that is open waits until the user has chosen.
void FormView::fillDue()
{
    if (!editing)
        return;
    bool isAnyFilled = false;
    for (Filling &filling : fillings) {
        if (!filling.isDue)
            continue;
        if (filling.popUp->view()->isVisible()) {
            QTimer::singleShot(lookAgain, this, &FormView::fillDue);
            continue;
        }
        filling.isDue = false;
        isAnyFilled = true;
        fill(*filling.popUp, filling.row);
    }
    if (isAnyFilled)
        refresh();
}

// What is shown

void FormView::focusTitle()
{
    if (firstField)
        firstField->setFocus();
}

void FormView::focusEmptyText()
{
    const auto empty = std::ranges::find_if(
        texts, [](const GrowingTextField *field) { return field->toPlainText().isEmpty(); });
    empty == texts.end() ? focusTitle() : (*empty)->setFocus();
}

void FormView::setEditing(bool isNowEditing)
{
    editing = isNowEditing;
    for (GrowingTextField *field : texts) {
        field->setReadOnly(!editing);
        field->setFocusPolicy(editing ? Qt::StrongFocus : Qt::ClickFocus);
        if (field != firstField)
            field->setFramed(editing);
    }
    fillDue();
    refresh();
}

void FormView::refresh()
{
    if (checkDone) {
        const std::optional<bool> isTicked = model.isTicked();
        checkDone->setChecked(isTicked.value_or(checkDone->isChecked()));
        if (!isTicked)
            checkDone->hide();
    }
    for (const auto &sync : syncs)
        sync();
    for (const Row &row : rows)
        refreshRow(row);
}

void FormView::refreshRow(const Row &row)
{
    const int number = row.about.id;
    if (row.about.editor == Editor::Title)
        return;
    RowItemView &view = *row.view;
    if (const QString label = model.label(number); !label.isEmpty())
        view.setLabel(label);
    view.setError(model.error(number));
    view.setHasValue(model.hasValue(number) && editing);
    const bool isGiven = model.isGiven(number);
    if (!isTall(row.about)) {
        view.setPreview(model.text(number), iconOf(model.mark(number)));
        const bool leadsOn = row.about.editor == Editor::Choice && model.chosenRecord(number);
        view.setGoesTo(leadsOn ? localized(u"Show %1"_s).arg(firstPart(model.text(number))) : QString());
        view.setPreviewing(!editing || isGiven);
    }
    view.setRowHidden(editing && !isGiven ? !model.isShown(number) : !model.isShownInPreview(number));
}

void FormView::keyPressEvent(QKeyEvent *event)
{
    const QMimeData *held = portrait && editing ? pastedPicture(*event) : nullptr;
    if (held)
        portrait->take(*held);
    else
        FormCard::keyPressEvent(event);
}

void FormView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!editing)
        Q_EMIT editWanted();
    FormCard::mouseDoubleClickEvent(event);
}
