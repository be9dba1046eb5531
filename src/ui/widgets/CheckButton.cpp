#include "widgets/CheckButton.h"

#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int circleSize = 22;
constexpr int ringSpace = 5;

CheckButton::CheckButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

QSize CheckButton::sizeHint() const
{
    return {circleSize + 2 * ringSpace, circleSize + 2 * ringSpace};
}

void CheckButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (isChecked()) {
        Icons::paint(painter, rect(), u"check-done"_s, Theme::checkBoxDone, circleSize);
        Icons::paint(painter, rect(), u"check-mark"_s, Theme::textOnAccent, circleSize);
    } else {
        Icons::paint(painter, rect(), u"check-open"_s, underMouse() ? Theme::accent : Theme::checkBox,
                     circleSize);
    }
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), width() / 2.0, Theme::focusRing);
}
