#include "records/ItemsField.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "records/FormItems.h"
#include "records/OpenLink.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/PopUpButton.h"
#include "widgets/TextLabel.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QClipboard>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

/// The widgets of one entry while it is edited.
struct ItemsField::EditedItem
{
    QWidget *line = nullptr;
    std::vector<QLineEdit *> fields;
    /// The last of them, or null.
    QLineEdit *spare = nullptr;
    PopUpButton *type = nullptr;
    QToolButton *remove = nullptr;
    /// In the order in which the eye meets them.
    std::vector<QWidget *> inOrder() const
    {
        std::vector<QWidget *> all(fields.begin(), fields.end());
        if (spare)
            std::rotate(all.begin() + 1, all.end() - 1, all.end());
        all.push_back(type);
        all.push_back(remove);
        return all;
    }
};

constexpr int typeWidth = 92;
/// Below this width there is no room for a field and its type in one line.
constexpr int narrowField = 260;

ItemsField::ItemsField(FormModel &model, const FormRow &row, QWidget *parent)
    : QWidget(parent)
    , items(*model.items(row.id))
    , name(model.label(row.id))
    , column(new QVBoxLayout(this))
    , beginning(new QWidget(this))
{
    beginning->hide();
    setObjectName(row.controlName);
    column->setContentsMargins({});
    column->setSpacing(Theme::unit);
}

ItemsField::~ItemsField() = default;

void ItemsField::showItems(bool isEditing)
{
    if (links)
        links->setVisible(!isEditing);
    for (const EditedItem &item : edited)
        item.line->setVisible(isEditing);
    isEditing ? showFields() : showLinks();
    updateGeometry();
}

// Fields

void ItemsField::showFields()
{
    while (static_cast<int>(edited.size()) > items.count())
        dropEdited();
    while (static_cast<int>(edited.size()) < items.count())
        addEdited();
    for (int item = 0; item < items.count(); ++item)
        fillEdited(item);
}

QLineEdit *ItemsField::makeField(int item, int field, const QString &placeholder)
{
    auto *edit = new QLineEdit;
    edit->setObjectName(u"field"_s);
    edit->setPlaceholderText(placeholder);
    edit->setAccessibleName(items.placeholders().size() > 1 ? name + u", "_s + placeholder : name);
    edit->setMinimumWidth(1);
    connect(edit, &QLineEdit::textEdited, this,
            [this, item, field](const QString &text) { items.setText(item, field, text); });
    connect(edit, &QLineEdit::returnPressed, this, [this] { focusNextChild(); });
    return edit;
}

/// Several fields stand two in a line below the first one, with the type and the button at the end.
void ItemsField::addEdited()
{
    const int item = static_cast<int>(edited.size());
    EditedItem added;
    added.line = new QWidget(this);
    auto *grid = new QGridLayout(added.line);
    grid->setContentsMargins({});
    grid->setSpacing(Theme::unit / 2);
    const QStringList placeholders = items.placeholders();
    const bool isLong = placeholders.size() > 1;
    for (int field = 0; field < placeholders.size(); ++field) {
        QLineEdit *edit = makeField(item, field, placeholders.at(field));
        if (field == 0)
            grid->addWidget(edit, 0, 0, 1, isLong ? 3 : 1);
        else
            grid->addWidget(edit, (field + 3) / 2, field % 2 == 1 ? 0 : 1, 1, field % 2 == 1 ? 1 : 2);
        added.fields.push_back(edit);
    }
    if (const QString spare = items.sparePlaceholder(); !spare.isEmpty()) {
        added.spare = makeField(item, static_cast<int>(placeholders.size()), spare);
        added.fields.push_back(added.spare);
        grid->addWidget(added.spare, 1, 0, 1, 3);
    }
    added.type = new PopUpButton(u"popUpButtonType"_s);
    added.type->setAccessibleName(name + u", "_s + localized(u"Type"_s));
    added.type->addItems(items.types());
    added.type->setFixedWidth(QFontMetrics(added.type->font()).averageCharWidth() * 4 + typeWidth);
    connect(added.type, &QComboBox::activated, this, [this, item](int type) { items.setType(item, type); });
    added.remove = new QToolButton;
    added.remove->setObjectName(u"buttonRemove"_s);
    added.remove->setIcon(Icons::icon(u"clear"_s, Theme::secondaryText));
    added.remove->setAutoRaise(true);
    added.remove->setFocusPolicy(Qt::StrongFocus);
    QSizePolicy keepsPlace = added.remove->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true);
    added.remove->setSizePolicy(keepsPlace);
    // Where it was, the next entry is afterwards.
    connect(
        added.remove, &QToolButton::clicked, this,
        [this, item] {
            edited.at(static_cast<std::size_t>(item)).fields.front()->setFocus();
            items.remove(item);
        },
        Qt::QueuedConnection);
    grid->setColumnStretch(0, 1);
    if (isLong)
        grid->setColumnStretch(1, 1);
    placeType(added);
    column->addWidget(added.line);
    // The new one comes after the one above, wherever the keys are.
    QWidget *before = edited.empty() ? beginning : edited.back().remove;
    for (QWidget *widget : added.inOrder()) {
        setTabOrder(before, widget);
        before = widget;
    }
    if (edited.empty())
        setFocusProxy(added.fields.front());
    added.line->show();
    edited.push_back(std::move(added));
}

/// In a narrow form the type of a single field stands below it.
void ItemsField::placeType(const EditedItem &item) const
{
    auto &grid = *static_cast<QGridLayout *>(item.line->layout());
    const auto count = static_cast<int>(item.fields.size());
    if (count > 1) {
        grid.addWidget(item.type, count / 2 + 1, 0);
        grid.addWidget(item.remove, count / 2 + 1, 2, Qt::AlignRight);
    } else {
        grid.addWidget(item.type, isNarrow ? 1 : 0, isNarrow ? 0 : 1, Qt::AlignLeading);
        grid.addWidget(item.remove, 0, 2);
    }
}

void ItemsField::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (isNarrow == (width() < narrowField))
        return;
    isNarrow = !isNarrow;
    for (const EditedItem &item : edited)
        placeType(item);
}

void ItemsField::dropEdited()
{
    const EditedItem dropped = std::move(edited.back());
    edited.pop_back();
    if (dropped.line->isAncestorOf(QApplication::focusWidget()) && !edited.empty())
        edited.back().fields.front()->setFocus();
    dropped.line->hide();
    dropped.line->deleteLater();
}

void ItemsField::fillEdited(int item)
{
    const EditedItem &shown = edited.at(static_cast<std::size_t>(item));
    for (int field = 0; field < static_cast<int>(shown.fields.size()); ++field) {
        QLineEdit &edit = *shown.fields[static_cast<std::size_t>(field)];
        if (edit.text() != items.text(item, field))
            edit.setText(items.text(item, field));
    }
    // Emptied, it stays for as long as somebody types in it.
    if (shown.spare)
        shown.spare->setVisible(!shown.spare->text().isEmpty() || shown.spare->hasFocus());
    shown.type->setCurrentIndex(items.type(item));
    const bool isFree = item == items.count() - 1;
    shown.remove->setVisible(!isFree);
    const QString words = firstPart(items.words(item));
    shown.remove->setAccessibleName(localized(u"Remove %1"_s).arg(words));
    shown.remove->setToolTip(shown.remove->accessibleName());
}

// Links

void ItemsField::showLinks()
{
    const QStringList types = items.types();
    std::vector<LinkedItem> linked;
    for (int item = 0; item < items.count(); ++item) {
        if (const QString words = items.words(item); !words.isEmpty())
            linked.push_back({words, items.link(item), types.value(items.type(item))});
    }
    if (links && linked == shownLinks)
        return;
    if (links) {
        links->hide();
        links->deleteLater();
    }
    shownLinks = std::move(linked);
    links = new QWidget(this);
    auto *lines = new QVBoxLayout(links);
    lines->setContentsMargins(0, Theme::unit, 0, Theme::unit);
    lines->setSpacing(Theme::unit / 2);
    for (const LinkedItem &item : shownLinks)
        lines->addWidget(makeLink(item));
    column->addWidget(links);
    QWidget *before = beginning;
    for (auto *label : links->findChildren<QLabel *>(u"labelLink"_s)) {
        setTabOrder(before, label);
        before = label;
    }
    links->show();
}

/// An address has no blanks: it may go on in the next line behind its signs.
static QString withPlacesToBreak(QString words)
{
    static const QRegularExpression signBeforeMore(u"([@./_-])(?=[^\\s@./_-])"_s);
    return words.replace(signBeforeMore, u"\\1\u200B"_s);
}

QWidget *ItemsField::makeLink(const LinkedItem &item)
{
    auto *line = new QWidget;
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins({});
    layout->setSpacing(Theme::unit);
    auto *label = makeTextLabel({}, Theme::FontRole::Body, Theme::accent);
    label->setObjectName(u"labelLink"_s);
    label->setTextFormat(Qt::RichText);
    const QString words =
        withPlacesToBreak(readablePart(item.words)).toHtmlEscaped().replace(u'\n', u"<br>"_s);
    Appearance::follow(*label, [label, words] {
        label->setText(
            u"<a href=\"link\" style=\"color:%1\">%2</a>"_s.arg(Theme::selectedText.name(), words));
    });
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setFocusPolicy(Qt::StrongFocus);
    label->setMinimumWidth(1);
    label->setToolTip(firstPart(item.link));
    label->setAccessibleName(name + u", "_s + item.type + u": "_s + firstPart(item.words));
    connect(label, &QLabel::linkActivated, this, [this, item] { follow(item); });
    label->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(label, &QWidget::customContextMenuRequested, label, [label, item](const QPoint &place) {
        auto *menu = new QMenu(label);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->addAction(localized(u"Copy"_s), label,
                        [item] { QApplication::clipboard()->setText(item.words); });
        menu->popup(label->mapToGlobal(place));
    });
    auto *type = makeTextLabel(item.type, Theme::FontRole::Small, Theme::secondaryText);
    type->setWordWrap(false);
    layout->addWidget(label, 1);
    layout->addWidget(type, 0, Qt::AlignTop);
    return line;
}

void ItemsField::follow(const LinkedItem &item)
{
    openLink(item.link, name, item.words);
}
