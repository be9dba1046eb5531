#include "widgets/RowItemView.h"
#include "widgets/Appearance.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Animations.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPropertyAnimation>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

constexpr int labelWidth = 132;
/// In a narrow row the control gets more of the room.
constexpr int narrowRow = 380;
constexpr int narrowLabelWidth = 88;
constexpr int sideMargin = 16;
constexpr int topMargin = 3;
constexpr int bottomMargin = 4;
constexpr int rowIconSize = 16;
constexpr int deleteSize = 24;
/// Left of what a control paints at its own end.
constexpr int deleteInset = 30;

/// The words of a label begin where the row does, whatever language they are in.
static Qt::Alignment leading(const QWidget &widget)
{
    return Qt::AlignAbsolute | Qt::AlignVCenter | (widget.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft);
}

RowItemView::RowItemView(int tag, const QString &textTag, int minHeigt, QWidget *parent)
    : QWidget(parent)
    , number(tag)
    , shownHeight(minHeigt)
    , label(new QLabel(this))
{
    setObjectName(u"row"_s + textTag);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(sideMargin, topMargin, sideMargin, bottomMargin);
    row->setSpacing(Theme::unit);
    row->addWidget(label);
    label->setFixedWidth(labelWidth);
    label->setWordWrap(true);
    label->setAlignment(leading(*this));
    Appearance::colourText(*label, Theme::secondaryText);
    label->hide();
    settle();
}

void RowItemView::setError(const QString &reason)
{
    if (reason == label->toolTip())
        return;
    label->setToolTip(reason);
    Appearance::colourText(*label, reason.isEmpty() ? Theme::secondaryText : Theme::overdue);
    if (label->buddy())
        label->buddy()->setAccessibleDescription(reason);
}

void RowItemView::setLabel(const QString &text)
{
    label->setText(text);
    label->show();
    settle();
    if (label->buddy())
        label->buddy()->setAccessibleName(text);
}

void RowItemView::setControl(QWidget *newControl)
{
    control = newControl;
    layout()->addWidget(control);
    label->setBuddy(control);
    if (control->accessibleName().isEmpty())
        control->setAccessibleName(label->text());
    settle();
}

void RowItemView::setInset(int inset)
{
    layout()->setContentsMargins(Direction::margins(*this, inset, topMargin, sideMargin, bottomMargin));
}

/// The label stands beside the first line of a text.
void RowItemView::alignAtTop()
{
    label->setContentsMargins(0, Theme::unit, 0, 0);
    for (int index = 0; index < layout()->count(); ++index)
        layout()->itemAt(index)->setAlignment(Qt::AlignTop);
}

void RowItemView::setGrows()
{
    grows = true;
    if (!label->text().isEmpty())
        alignAtTop();
    settle();
}

// Heights

/// The height of a row at rest: fixed, or what its content asks for. Large fonts may need more.
void RowItemView::settle()
{
    const bool isFree = grows || isPreviewing;
    const int ofControl = control ? control->minimumSizeHint().height() : 0;
    const int ofLabel = label->text().isEmpty() ? 0 : label->heightForWidth(labelWidth);
    const int needed = (isFree ? ofLabel : std::max(ofControl, ofLabel)) + topMargin + bottomMargin;
    const int least = std::max(shownHeight, needed);
    setMinimumHeight(isCollapsed ? 0 : least);
    setMaximumHeight(isCollapsed ? 0 : isFree ? QWIDGETSIZE_MAX : least);
    setSizePolicy(QSizePolicy::Preferred, isFree ? QSizePolicy::Minimum : QSizePolicy::Fixed);
    setVisible(!isCollapsed);
    isAnimated = false;
}

void RowItemView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && !isAnimated)
        settle();
}

void RowItemView::setRowHeight(int height)
{
    setFixedHeight(height);
}

void RowItemView::setRowHidden(bool hidden)
{
    if (hidden == isCollapsed)
        return;
    isCollapsed = hidden;
    if (!window()->isVisible())
        return settle();
    setVisible(true);
    isAnimated = true;
    auto *animation = new QPropertyAnimation(this, "rowHeight");
    animation->setDuration(Animations::duration(Animations::rowCollapse));
    animation->setStartValue(hidden ? height() : 0);
    animation->setEndValue(hidden ? 0 : shownHeight);
    connect(animation, &QAbstractAnimation::finished, this, &RowItemView::settle);
    Animations::start(animation);
}

// Preview

QLabel *RowItemView::previewLabel()
{
    if (previewText)
        return previewText;
    preview = new QWidget(this);
    auto *line = new QHBoxLayout(preview);
    line->setContentsMargins(0, Theme::unit / 2, 0, Theme::unit / 2);
    line->setSpacing(Theme::unit);
    previewIcon = new QLabel;
    previewText = new QLabel;
    previewText->setObjectName(u"label"_s + objectName().mid(3) + u"Preview"_s);
    previewText->setTextFormat(Qt::PlainText);
    previewText->setWordWrap(true);
    previewText->setAlignment(leading(*this));
    previewText->setMinimumWidth(1);
    line->addWidget(previewIcon);
    line->addWidget(previewText, 1);
    preview->hide();
    layout()->addWidget(preview);
    return previewText;
}

void RowItemView::setPreview(const QString &text, const QIcon &icon)
{
    previewLabel()->setText(readablePart(text));
    previewText->setAccessibleName(label->text() + u": "_s + text);
    previewIcon->setVisible(!icon.isNull());
    previewIcon->setPixmap(icon.pixmap(QSize(rowIconSize, rowIconSize), devicePixelRatioF()));
}

void RowItemView::setGoesTo(const QString &what)
{
    if (!buttonGo && what.isEmpty())
        return;
    if (!buttonGo) {
        previewLabel();
        buttonGo = new QToolButton;
        buttonGo->setObjectName(u"buttonGo"_s);
        buttonGo->setIcon(
            Icons::icon(isRightToLeft() ? u"chevron-left"_s : u"chevron-right"_s, Theme::secondaryText));
        buttonGo->setAutoRaise(true);
        buttonGo->setFocusPolicy(Qt::StrongFocus);
        preview->layout()->addWidget(buttonGo);
        setTabOrder(control, buttonGo);
        connect(buttonGo, &QToolButton::clicked, this, &RowItemView::goClicked);
    }
    buttonGo->setVisible(!what.isEmpty());
    buttonGo->setAccessibleName(what);
    buttonGo->setToolTip(what);
}

void RowItemView::setPreviewing(bool isNowPreviewing)
{
    if (!preview)
        return;
    isPreviewing = isNowPreviewing;
    preview->setVisible(isPreviewing);
    control->setVisible(!isPreviewing);
    visibleOrInvisibleButtonDelete();
    settle();
}

// Clearing

void RowItemView::setDeletable()
{
    buttonDelete = new QToolButton(this);
    buttonDelete->setObjectName(u"buttonDelete"_s + objectName().mid(3));
    buttonDelete->setIcon(Icons::icon(u"clear"_s, Theme::secondaryText));
    buttonDelete->setIconSize({rowIconSize, rowIconSize});
    buttonDelete->setAutoRaise(true);
    buttonDelete->setFocusPolicy(Qt::NoFocus);
    buttonDelete->setCursor(Qt::ArrowCursor);
    buttonDelete->setAccessibleName(localized(u"Delete"_s) + u" "_s + label->text());
    buttonDelete->resize(deleteSize, deleteSize);
    buttonDelete->hide();
    // The button is seen only below the mouse.
    const auto actions = [this] {
        return canDelete() ? std::vector<AccessibleAction>{{buttonDelete->accessibleName(),
                                                            [this] { Q_EMIT deleteClicked(); }}}
                           : std::vector<AccessibleAction>();
    };
    Accessibility::describe(
        *this, {.role = QAccessible::Grouping, .name = [this] { return label->text(); }, .actions = actions});
    connect(buttonDelete, &QToolButton::clicked, this, &RowItemView::deleteClicked);
}

void RowItemView::setHasValue(bool value)
{
    hasValue = value;
    visibleOrInvisibleButtonDelete();
}

bool RowItemView::canDelete() const
{
    return hasValue && !isPreviewing && control->isEnabled();
}

void RowItemView::visibleOrInvisibleButtonDelete()
{
    if (!buttonDelete)
        return;
    buttonDelete->setVisible(canDelete() && underMouse());
    buttonDelete->raise();
    placeDeleteButton();
}

void RowItemView::placeDeleteButton()
{
    if (!buttonDelete)
        return;
    const QRect around = control->geometry();
    const int y = around.top() + std::min(around.height(), Theme::controlHeight) / 2 - deleteSize / 2;
    const int x = isRightToLeft() ? around.left() + deleteInset - deleteSize / 2
                                  : around.right() - deleteInset - deleteSize / 2;
    buttonDelete->move(x, y);
}

bool RowItemView::event(QEvent *event)
{
    const bool answer = QWidget::event(event);
    if (event->type() == QEvent::Enter || event->type() == QEvent::Leave)
        visibleOrInvisibleButtonDelete();
    return answer;
}

void RowItemView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    label->setFixedWidth(width() < narrowRow ? narrowLabelWidth : labelWidth);
    layout()->activate();
    placeDeleteButton();
}

/// Whether no row is shown below this one.
bool RowItemView::isLastShown() const
{
    const QLayout *chain = parentWidget()->layout();
    for (int index = chain ? chain->count() - 1 : -1; index >= 0; --index) {
        const QWidget *row = chain->itemAt(index)->widget();
        if (row && !row->isHidden())
            return row == this;
    }
    return true;
}

void RowItemView::paintEvent(QPaintEvent *)
{
    if (!isLastShown())
        QPainter(this).fillRect(QRect(sideMargin, height() - 1, width() - sideMargin, 1),
                                QColor(Theme::divider));
}
