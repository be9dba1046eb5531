#include "widgets/RowItemView.h"

#include "widgets/Animations.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPropertyAnimation>

constexpr int labelWidth = 132;
constexpr int sideMargin = 16;

RowItemView::RowItemView(int tag, const QString &textTag, int minHeigt, QWidget *parent)
    : QWidget(parent)
    , number(tag)
    , shownHeight(minHeigt)
    , label(new QLabel(this))
{
    setObjectName(QStringLiteral("row") + textTag);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(sideMargin, 3, sideMargin, 4);
    row->setSpacing(Theme::unit);
    row->addWidget(label);
    label->setFixedWidth(labelWidth);
    label->setWordWrap(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Theme::secondaryText);
    label->setPalette(palette);
    label->hide();
    settle();
}

void RowItemView::setLabel(const QString &text)
{
    label->setText(text);
    label->show();
    if (label->buddy())
        label->buddy()->setAccessibleName(text);
}

void RowItemView::setControl(QWidget *control)
{
    layout()->addWidget(control);
    label->setBuddy(control);
    if (control->accessibleName().isEmpty())
        control->setAccessibleName(label->text());
}

void RowItemView::setInset(int inset)
{
    QMargins margins = layout()->contentsMargins();
    isRightToLeft() ? margins.setRight(inset) : margins.setLeft(inset);
    layout()->setContentsMargins(margins);
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

/// The height of a row at rest: fixed, or what its content asks for.
void RowItemView::settle()
{
    setMinimumHeight(isCollapsed ? 0 : shownHeight);
    setMaximumHeight(isCollapsed ? 0 : grows ? QWIDGETSIZE_MAX : shownHeight);
    setSizePolicy(QSizePolicy::Preferred, grows ? QSizePolicy::Minimum : QSizePolicy::Fixed);
    setVisible(!isCollapsed);
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
    if (!isVisibleTo(window()) && hidden)
        return settle();
    setVisible(true);
    auto *animation = new QPropertyAnimation(this, "rowHeight");
    animation->setDuration(Animations::duration(Animations::rowCollapse));
    animation->setStartValue(hidden ? height() : 0);
    animation->setEndValue(hidden ? 0 : shownHeight);
    connect(animation, &QAbstractAnimation::finished, this, &RowItemView::settle);
    Animations::start(animation);
}

void RowItemView::paintEvent(QPaintEvent *)
{
    const QLayout *chain = parentWidget()->layout();
    const bool isLast = chain && chain->itemAt(chain->count() - 1)->widget() == this;
    if (!isLast)
        QPainter(this).fillRect(QRect(sideMargin, height() - 1, width() - sideMargin, 1), Theme::divider);
}
