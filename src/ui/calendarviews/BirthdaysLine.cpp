#include "calendarviews/BirthdaysLine.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
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

constexpr int cakeSize = 14;
constexpr double cakeSpace = 4;

BirthdaysLine::BirthdaysLine(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    AccessibleParts parts{
        .count = [this] { return static_cast<int>(columns().size()); },
        .part =
            [this](quint64 key) {
                const int column = static_cast<int>(key) - 1;
                const auto index = static_cast<std::size_t>(column);
                AccessiblePart part{.name = spoken[index] + u": "_s + BirthdayDays::sentenceOf(lists[index]),
                                    .role = QAccessible::Link,
                                    .place = cell(column).toAlignedRect()};
                part.state.focusable = true;
                part.state.focused = hasFocus() && column == current;
                part.actions = {
                    {QAccessibleActionInterface::pressAction(), [this, column] { press(column); }}};
                return part;
            },
        .keyAt =
            [this](int place) {
                return static_cast<quint64>(columns()[static_cast<std::size_t>(place)]) + 1;
            },
        .placeOf =
            [this](quint64 key) {
                const std::vector<int> all = columns();
                const auto found = std::ranges::find(all, static_cast<int>(key) - 1);
                return found == all.end() ? -1 : static_cast<int>(found - all.begin());
            },
        .focused = [this] { return columns().empty() ? 0 : static_cast<quint64>(current) + 1; }};
    Accessibility::describe(*this, {.role = QAccessible::List,
                                    .name = [] { return localized(u"Birthdays"_s); },
                                    .parts = std::move(parts)});
}

void BirthdaysLine::setDays(std::vector<BirthdayDays::List> days, std::vector<QString> spokenDays, int indent,
                            int trailing)
{
    lists = std::move(days);
    spoken = std::move(spokenDays);
    leadingSpace = indent;
    trailingSpace = trailing;
    const std::vector<int> all = columns();
    if (!all.empty() && std::ranges::find(all, current) == all.end())
        current = all.front();
    setVisible(!all.empty());
    Accessibility::partsReplaced(*this);
    update();
}

int BirthdaysLine::neededHeight() const
{
    constexpr int least = 20;
    const int line = QFontMetrics(Theme::font(Theme::FontRole::Small)).height() + 4;
    return columns().empty() ? 0 : std::max(least, line);
}

std::vector<int> BirthdaysLine::columns() const
{
    std::vector<int> found;
    for (std::size_t column = 0; column < lists.size(); ++column)
        if (!lists[column].empty())
            found.push_back(static_cast<int>(column));
    return found;
}

QRectF BirthdaysLine::cell(int column) const
{
    const double each = (width() - leadingSpace - trailingSpace) / static_cast<double>(lists.size());
    const QRectF place(leadingSpace + each * column, 0, each, height());
    return isRightToLeft() ? QRectF(width() - place.right(), 0, each, height()) : place;
}

int BirthdaysLine::columnAt(QPointF point) const
{
    for (const int column : columns()) {
        if (cell(column).contains(point))
            return column;
    }
    return -1;
}

// What is shown

void BirthdaysLine::paintBirthdays(QPainter &painter, const QRectF &place,
                                   const BirthdayDays::List &birthdays, bool isRightToLeft)
{
    const QFont font = Theme::font(Theme::FontRole::Small);
    const QFontMetricsF size(font);
    QRectF words = place.adjusted(cakeSpace, 0, -cakeSpace, 0);
    QRect cake(0, 0, cakeSize, cakeSize);
    cake.moveCenter(words.center().toPoint());
    if (isRightToLeft) {
        cake.moveRight(static_cast<int>(words.right()));
        words.setRight(cake.left() - cakeSpace);
    } else {
        cake.moveLeft(static_cast<int>(words.left()));
        words.setLeft(cake.right() + cakeSpace);
    }
    Icons::paint(painter, cake, u"birthday"_s, Theme::secondaryText, cakeSize);
    const QString text = BirthdayDays::wordsFor(
        birthdays, [&](const QString &one) { return size.horizontalAdvance(one) <= words.width(); });
    painter.setFont(font);
    painter.setPen(Theme::secondaryText);
    Direction::drawWords(painter, words, Qt::AlignVCenter | (isRightToLeft ? Qt::AlignRight : Qt::AlignLeft),
                         size.elidedText(text, Qt::ElideRight, words.width()));
}

void BirthdaysLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(Theme::card));
    for (const int column : columns()) {
        paintBirthdays(painter, cell(column), lists[static_cast<std::size_t>(column)], isRightToLeft());
        if (hasFocus() && column == current)
            MorvaneStyle::drawFocusRing(painter, cell(column).adjusted(2, 1, -2, -1), 4, Theme::focusRing);
    }
}

bool BirthdaysLine::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const int column = columnAt(help->pos());
    if (column >= 0)
        QToolTip::showText(help->globalPos(),
                           BirthdayDays::sentenceOf(lists[static_cast<std::size_t>(column)]).toHtmlEscaped(),
                           this, cell(column).toAlignedRect());
    else
        QToolTip::hideText();
    return true;
}

// Mouse and keys

void BirthdaysLine::press(int column)
{
    if (column < 0 || column >= static_cast<int>(lists.size()))
        return;
    // The press may bring other days.
    const BirthdayDays::List pressedOnes = lists[static_cast<std::size_t>(column)];
    if (!pressedOnes.empty())
        Q_EMIT pressed(pressedOnes, mapToGlobal(cell(column).bottomLeft().toPoint()));
}

void BirthdaysLine::mouseMoveEvent(QMouseEvent *event)
{
    setCursor(columnAt(event->position()) >= 0 ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void BirthdaysLine::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        press(columnAt(event->position()));
}

void BirthdaysLine::goAlong(int step)
{
    const std::vector<int> all = columns();
    if (all.empty())
        return;
    const auto place = std::ranges::find(all, current) - all.begin();
    const auto last = static_cast<std::ptrdiff_t>(all.size()) - 1;
    current = all[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(place + step, 0, last))];
    Accessibility::focusMoved(*this);
    update();
}

void BirthdaysLine::keyPressEvent(QKeyEvent *event)
{
    const int on = isRightToLeft() ? -1 : 1;
    const int far = static_cast<int>(lists.size());
    switch (event->key()) {
    case Qt::Key_Left:
        return goAlong(-on);
    case Qt::Key_Right:
        return goAlong(on);
    case Qt::Key_Home:
        return goAlong(-far);
    case Qt::Key_End:
        return goAlong(far);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return press(current);
    default:
        QWidget::keyPressEvent(event);
    }
}

void BirthdaysLine::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    goAlong(0);
}

void BirthdaysLine::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}
