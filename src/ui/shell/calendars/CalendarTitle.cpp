#include "shell/calendars/CalendarTitle.h"

#include "widgets/Accessibility.h"
#include "widgets/Direction.h"
#include "widgets/Theme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int gap = 12;

static QFont largeFont()
{
    constexpr double larger = 1.25;
    QFont font = Theme::font(Theme::FontRole::Title);
    font.setPointSizeF(font.pointSizeF() * larger);
    font.setWeight(QFont::Light);
    return font;
}

static QFont topFont()
{
    return Theme::font(Theme::FontRole::BodyStrong);
}

static QFont bottomFont()
{
    return Theme::font(Theme::FontRole::Small);
}

CalendarTitle::CalendarTitle(QWidget *parent)
    : QWidget(parent)
{
    Accessibility::describe(*this, {.role = QAccessible::Heading});
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void CalendarTitle::setWords(const QString &newLeft, const QString &newTop, const QString &newBottom)
{
    left = newLeft;
    top = newTop;
    bottom = newBottom;
    QStringList words{left, top, bottom};
    words.removeAll(QString());
    setAccessibleName(words.join(u", "_s));
    Accessibility::nameChanged(*this);
    updateGeometry();
    update();
}

void CalendarTitle::setMark(const QString &reason)
{
    isMarked = !reason.isEmpty();
    setToolTip(reason);
    setAccessibleDescription(reason);
    update();
}

int CalendarTitle::leftWidth() const
{
    return QFontMetrics(largeFont()).horizontalAdvance(left);
}

QSize CalendarTitle::sizeHint() const
{
    const int lines = std::max(QFontMetrics(topFont()).horizontalAdvance(top),
                               QFontMetrics(bottomFont()).horizontalAdvance(bottom));
    return {leftWidth() + gap + lines + 2, minimumSizeHint().height()};
}

QSize CalendarTitle::minimumSizeHint() const
{
    const int lines = QFontMetrics(topFont()).height() + QFontMetrics(bottomFont()).height();
    return {leftWidth() + gap, std::max(QFontMetrics(largeFont()).height(), lines)};
}

void CalendarTitle::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(Theme::text);
    painter.setFont(largeFont());
    const int large = leftWidth();
    const QRect all = rect();
    Direction::drawLine(painter, QStyle::visualRect(layoutDirection(), all, {0, 0, large + 2, height()}),
                        layoutDirection(), left);
    const int room = width() - large - gap;
    if (room < 1)
        return;
    const int topHeight = QFontMetrics(topFont()).height();
    const int bottomHeight = bottom.isEmpty() ? 0 : QFontMetrics(bottomFont()).height();
    const int y = (height() - topHeight - bottomHeight) / 2;
    const auto line = [&](int from, int tall) {
        return QStyle::visualRect(layoutDirection(), all, {large + gap, from, room, tall});
    };
    painter.setFont(topFont());
    Direction::drawLine(painter, line(y, topHeight), layoutDirection(), top);
    if (isMarked) {
        constexpr double dot = 5;
        const double after = large + gap + painter.fontMetrics().horizontalAdvance(top) + dot;
        QRectF mark(after, y + (topHeight - dot) / 2, dot, dot);
        if (isRightToLeft())
            mark.moveLeft(width() - mark.right());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::priorityMedium);
        painter.drawEllipse(mark);
    }
    painter.setFont(bottomFont());
    painter.setPen(Theme::secondaryText);
    Direction::drawLine(painter, line(y + topHeight, bottomHeight), layoutDirection(), bottom);
}
