#include "widgets/SplitPanes.h"

#include "foundation/NotificationCenter.h"
#include "store/state/NotificationNames.h"

#include <QVariantMap>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

SplitPanes::SplitPanes(QWidget *parent)
    : QSplitter(Qt::Horizontal, parent)
{
    setHandleWidth(0);
    setChildrenCollapsible(false);
    connect(this, &QSplitter::splitterMoved, this, [this] { leftWanted = sizes().constFirst(); });
}

void SplitPanes::setPanes(QWidget *left, QWidget *right)
{
    addWidget(left);
    addWidget(right);
    setStretchFactor(0, 0);
    setStretchFactor(1, 1);
}

void SplitPanes::setLeftBounds(int minimum, int maximum)
{
    widget(0)->setMinimumWidth(minimum);
    widget(0)->setMaximumWidth(maximum);
    leftWanted = maximum;
}

void SplitPanes::setLeftWidth(int wanted)
{
    leftWanted = std::clamp(wanted, widget(0)->minimumWidth(), widget(0)->maximumWidth());
    setSizes({leftWanted, std::max(0, width() - leftWanted)});
}

/// The right pane may need more room, or less, with each screen.
bool SplitPanes::event(QEvent *event)
{
    const bool answer = QSplitter::event(event);
    if (event->type() == QEvent::LayoutRequest)
        giveLeftItsWidth();
    return answer;
}

void SplitPanes::resizeEvent(QResizeEvent *event)
{
    QSplitter::resizeEvent(event);
    giveLeftItsWidth();
}

void SplitPanes::giveLeftItsWidth()
{
    if (count() == 2 && sizes().constFirst() < leftWanted)
        setSizes({leftWanted, width() - leftWanted});
}
