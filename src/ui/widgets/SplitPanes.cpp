#include "widgets/SplitPanes.h"

#include "foundation/NotificationCenter.h"
#include "store/state/NotificationNames.h"

#include <QVariantMap>

using namespace Qt::Literals::StringLiterals;

SplitPanes::SplitPanes(QWidget *parent)
    : QSplitter(Qt::Horizontal, parent)
{
    setHandleWidth(0);
    setChildrenCollapsible(false);
    connect(this, &QSplitter::splitterMoved, this, [this](int, int handle) {
        NotificationCenter::defaultCenter().post(notifications::splitChangeSize, static_cast<QObject *>(this),
                                                 QVariantMap{{u"NSSplitViewDividerIndex"_s, handle - 1}});
    });
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
}
