#include "filters/FilterButtonCancelView.h"

#include "foundation/Localization.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int crossSide = 14;
constexpr int pillPadding = 10;
constexpr int crossGap = 4;
constexpr int pillHeight = 24;

FilterButtonCancelView::FilterButtonCancelView(QWidget *parent)
    : QAbstractButton(parent)
{
    setObjectName(u"cancelFilterView"_s);
    setText(localized(u"Clear filter"_s));
    setAccessibleName(text());
    Appearance::setFont(*this, Theme::FontRole::Small);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

QSize FilterButtonCancelView::sizeHint() const
{
    return {2 * pillPadding + crossSide + crossGap + fontMetrics().horizontalAdvance(text()) + 1,
            std::max(pillHeight, fontMetrics().height() + Theme::unit)};
}

/// Where there is no room for the words, the cross stays.
QSize FilterButtonCancelView::minimumSizeHint() const
{
    return {2 * pillPadding + crossSide, sizeHint().height()};
}

void FilterButtonCancelView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isDown() || underMouse() ? Theme::filterPillHover : Theme::selection);
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    const bool hasWords = width() >= sizeHint().width();
    const auto placed = [this](const QRect &where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const int iconLeft = hasWords ? pillPadding : (width() - crossSide) / 2;
    Icons::paint(painter, placed({iconLeft, 0, crossSide, height()}), u"close"_s, Theme::selectedText,
                 crossSide);
    painter.setPen(Theme::selectedText);
    if (hasWords)
        painter.drawText(placed({iconLeft + crossSide + crossGap, 0, width(), height()}),
                         QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter),
                         text());
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), height() / 2, Theme::focusRing);
}

void FilterButtonCancelView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}
