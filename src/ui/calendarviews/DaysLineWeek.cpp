#include "calendarviews/DaysLineWeek.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Direction.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QAccessibleActionInterface>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

DaysLineWeek::DaysLineWeek(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::TabFocus);
    AccessibleParts parts{.count = [this] { return static_cast<int>(days.size()); },
                          .part =
                              [this](quint64 key) {
                                  const auto column = static_cast<int>(key) - 1;
                                  const Day &day = days[static_cast<size_t>(column)];
                                  AccessiblePart part{.name = day.spoken.isEmpty() ? day.words : day.spoken,
                                                      .role = isQuiet ? QAccessible::ColumnHeader
                                                                      : QAccessible::Button,
                                                      .place = cell(column).toAlignedRect()};
                                  if (day.hasClash)
                                      part.description = localized(u"Appointments at the same time"_s);
                                  if (isQuiet)
                                      return part;
                                  part.state.focusable = true;
                                  part.state.focused = hasFocus() && column == current;
                                  part.actions = {{QAccessibleActionInterface::pressAction(),
                                                   [this, date = day.date] { Q_EMIT dayPressed(date); }}};
                                  return part;
                              },
                          .focused = [this] { return static_cast<quint64>(current) + 1; }};
    Accessibility::describe(
        *this,
        {.role = QAccessible::List, .name = [] { return localized(u"Days"_s); }, .parts = std::move(parts)});
}

void DaysLineWeek::setDays(std::vector<Day> newDays, int leading, int trailing)
{
    days = std::move(newDays);
    current = std::min(current, static_cast<int>(days.size()) - 1);
    leadingSpace = leading;
    trailingSpace = trailing;
    Accessibility::partsReplaced(*this);
    update();
}

void DaysLineWeek::setQuiet()
{
    isQuiet = true;
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void DaysLineWeek::setClashes(const std::vector<bool> &clashes)
{
    for (size_t column = 0; column < days.size() && column < clashes.size(); ++column)
        days[column].hasClash = clashes[column];
    update();
}

int DaysLineWeek::neededHeight()
{
    constexpr int usual = 20;
    return std::max(usual, QFontMetrics(Theme::font(Theme::FontRole::Small)).height() + 4);
}

QRectF DaysLineWeek::cell(int column) const
{
    const double each = (width() - leadingSpace - trailingSpace) / static_cast<double>(days.size());
    const QRectF place(leadingSpace + each * column, 0, each, height());
    return isRightToLeft() ? QRectF(width() - place.right(), 0, each, height()) : place;
}

int DaysLineWeek::columnAt(QPointF point) const
{
    for (int column = 0; column < static_cast<int>(days.size()); ++column) {
        if (cell(column).contains(point))
            return column;
    }
    return -1;
}

void DaysLineWeek::paintEvent(QPaintEvent *)
{
    constexpr double dot = 5;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(Theme::card));
    for (int column = 0; column < static_cast<int>(days.size()); ++column) {
        const Day &day = days[static_cast<size_t>(column)];
        const QRectF place = cell(column);
        QFont font = Theme::font(Theme::FontRole::Small);
        if (day.isToday)
            font.setWeight(QFont::DemiBold);
        painter.setFont(font);
        const QString words = QFontMetricsF(font).elidedText(day.words, Qt::ElideRight, place.width() - 4);
        const double wide = QFontMetricsF(font).horizontalAdvance(words);
        if (day.isToday) {
            QRectF pill(0, 0, std::min(wide + 16, place.width()), place.height() - 1);
            pill.moveCenter(place.center());
            painter.setPen(Qt::NoPen);
            painter.setBrush(Theme::selection);
            painter.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
        }
        painter.setPen(day.isToday ? Theme::selectedText : Theme::text);
        Direction::drawWords(painter, place, Qt::AlignCenter, words);
        if (hasFocus() && column == current)
            MorvaneStyle::drawFocusRing(painter, place.adjusted(2, 1, -2, -1), 4, Theme::focusRing);
        if (!day.hasClash)
            continue;
        QRectF mark(0, 0, dot, dot);
        const double away = wide / 2 + 12;
        mark.moveCenter(place.center() + QPointF(isRightToLeft() ? -away : away, 0));
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::priorityMedium);
        painter.drawEllipse(mark);
    }
}

void DaysLineWeek::mouseReleaseEvent(QMouseEvent *event)
{
    const int column = columnAt(event->position());
    if (column < 0)
        return;
    const Date date = days[static_cast<size_t>(column)].date;
    if (event->button() == Qt::LeftButton)
        Q_EMIT dayPressed(date);
    else if (event->button() == Qt::RightButton)
        Q_EMIT dayMenuWanted(date);
}

void DaysLineWeek::goTo(int column)
{
    current = std::clamp(column, 0, static_cast<int>(days.size()) - 1);
    Accessibility::focusMoved(*this);
    update();
}

void DaysLineWeek::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    const auto today = std::ranges::find_if(days, &Day::isToday);
    goTo(today == days.end() ? current : static_cast<int>(today - days.begin()));
}

void DaysLineWeek::keyPressEvent(QKeyEvent *event)
{
    const int on = isRightToLeft() ? -1 : 1;
    const Date date = days[static_cast<size_t>(current)].date;
    switch (event->key()) {
    case Qt::Key_Left:
        return goTo(current - on);
    case Qt::Key_Right:
        return goTo(current + on);
    case Qt::Key_Home:
        return goTo(0);
    case Qt::Key_End:
        return goTo(static_cast<int>(days.size()) - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return Q_EMIT dayPressed(date);
    case Qt::Key_Menu:
    case Qt::Key_N:
        return Q_EMIT dayMenuWanted(date);
    default:
        QWidget::keyPressEvent(event);
    }
}

bool DaysLineWeek::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const int column = columnAt(help->pos());
        if (column >= 0 && days[static_cast<size_t>(column)].hasClash)
            QToolTip::showText(help->globalPos(), localized(u"Appointments at the same time"_s), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}
