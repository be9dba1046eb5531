#include "calendarviews/EventCalendarView.h"

#include "calendarsync/CalendarEvent.h"
#include "foundation/Calendar.h"
#include "foundation/DateFormatter.h"
#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/PaletteColor.h"
#include "store/queries/DBWorker.h"
#include "widgets/Direction.h"
#include "widgets/Icons.h"
#include "widgets/TextLabel.h"
#include "widgets/TextLines.h"
#include "widgets/Theme.h"

#include <QPainter>
#include <QStyle>

#include <map>

using namespace Qt::Literals::StringLiterals;
using Style = DateFormatter::Style;

constexpr double radius = 3;
constexpr double textLeft = 7;
constexpr double iconGap = 9;
constexpr double betweenIcons = 5;
constexpr double textGap = 7.5;

namespace {

constexpr QColor colorNoneCalendar{78, 107, 145};

QColor ofComponents(double red, double green, double blue)
{
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

QColor ofCategory(const CategoryPtr &category)
{
    const PaletteColor none = palette::colorNone;
    if (!category || !category->colorR())
        return ofComponents(none.red, none.green, none.blue);
    return ofComponents(category->colorR().value_or(0), category->colorG().value_or(0),
                        category->colorB().value_or(0));
}

/// Whether white words could not be read on a colour, unless it became another one.
bool isLight(const QColor &colour)
{
    constexpr double leastContrast = 2.2;
    return Theme::contrast(Theme::textOnColour, colour) < leastContrast;
}

/// Made once for each size of the text.
QFont titleFont(bool isStruckOut = false)
{
    static QFont base;
    static std::array<QFont, 2> made;
    if (const QFont present = Theme::font(Theme::FontRole::Small); !(present == base)) {
        base = present;
        for (QFont &font : made) {
            font = base;
            font.setWeight(QFont::Medium);
            font.setLetterSpacing(QFont::AbsoluteSpacing, 0.4);
        }
        made[1].setStrikeOut(true);
    }
    return made[isStruckOut ? 1 : 0];
}

int iconSize()
{
    return QFontMetrics(titleFont()).ascent();
}

} // namespace

EventCalendarView::EventCalendarView(std::shared_ptr<MVTask> shownEvent)
    : copy(std::move(shownEvent))
    , colour(colourOf(*copy))
{}

// Colours

QColor EventCalendarView::colourOf(const MVTask &task)
{
    if (DBWorker::isSample())
        return ofCategory(task.category);
    const auto calendar = task.typeCalendarID.isEmpty()
                              ? std::nullopt
                              : CalendarEvent::calendarOfIdentifier(task.typeCalendarID);
    if (!calendar)
        return colorNoneCalendar;
    const EKColor color = CalendarEvent::getColorOfCalendar(*calendar);
    return ofComponents(color.red, color.green, color.blue);
}

QColor EventCalendarView::colourOfNew()
{
    QColor colour = colorNoneCalendar;
    if (DBWorker::isSample()) {
        colour = ofCategory(nullptr);
    } else if (const auto calendar = CalendarEvent::getDefaultAccessCalendar()) {
        const EKColor color = CalendarEvent::getColorOfCalendar(*calendar);
        colour = ofComponents(color.red, color.green, color.blue);
    }
    colour.setAlphaF(0.85F);
    return colour;
}

QColor EventCalendarView::backgraundColor() const
{
    QColor fill = colour;
    fill.setAlphaF(0.75F);
    return fill;
}

namespace {

/// What becomes of a fill so that words can be read on it.
struct Ground
{
    QColor colour;
    bool isLight;

    static Ground of(const QColor &fill)
    {
        const QColor seen = Theme::mixed(fill, Theme::card);
        const bool light = ::isLight(seen);
        return {light ? seen : Theme::readable(seen, Theme::textOnColour, Theme::leastTextContrast), light};
    }

    /// There are few colours, and many items.
    static const Ground &kept(const QColor &fill)
    {
        static std::map<std::pair<QRgb, QRgb>, Ground> known;
        const std::pair key(fill.rgba(), QColor(Theme::card).rgba());
        const auto found = known.find(key);
        return found != known.end() ? found->second : known.emplace(key, of(fill)).first->second;
    }
};

} // namespace

QColor EventCalendarView::ground(bool isSelected) const
{
    return Ground::kept(isSelected ? selectedBacgraundColor() : backgraundColor()).colour;
}

QColor EventCalendarView::textColour() const
{
    return Ground::kept(backgraundColor()).isLight ? QColor(Theme::darkTextOnColour)
                                                   : QColor(Theme::textOnColour);
}

// Words

double EventCalendarView::textHeight()
{
    return QFontMetricsF(titleFont()).height();
}

QString EventCalendarView::shortTime(Date date)
{
    return DateFormatter::string(date, Style::None, Style::Short);
}

/// What there is room for where not all fits.
QString EventCalendarView::startText() const
{
    const OptionalDate start = copy->startDate ? copy->startDate : copy->dueDate;
    return start ? shortTime(*start) : QString();
}

QString EventCalendarView::timeText() const
{
    if (copy->isToDo())
        return localized(u"All day"_s);
    if (!copy->dueDate)
        return {};
    if (copy->isEmailCall() || !copy->startDate || *copy->startDate == *copy->dueDate)
        return shortTime(*copy->dueDate);
    return shortTime(*copy->startDate) + u" – "_s + shortTime(*copy->dueDate);
}

QString EventCalendarView::dayName(Date date)
{
    return DateFormatter::string(date, DateFormatter::patternFromTemplate(u"EEEEdMMMM"_s));
}

QString EventCalendarView::dayTitle(Date date, int items)
{
    QStringList words{dayName(date)};
    if (Calendar::current().isDateInToday(date))
        words << localized(u"Today"_s);
    words << localizedCount(u"%1 items"_s, items);
    return words.join(u", "_s);
}

QString EventCalendarView::spokenTime() const
{
    const auto moment = [&](Date date, OptionalDate known) {
        const QString time =
            copy->isToDo() ? QString() : DateFormatter::string(date, Style::None, Style::Short);
        if (known && Calendar::current().isSameDay(date, *known))
            return time;
        return time.isEmpty() ? dayName(date) : dayName(date) + u", "_s + time;
    };
    const OptionalDate start = copy->isEmailCall() || !copy->startDate ? copy->dueDate : copy->startDate;
    if (!start)
        return {};
    const QString from = moment(*start, std::nullopt);
    const QString to = copy->dueDate && *copy->dueDate != *start ? moment(*copy->dueDate, start) : QString();
    return to.isEmpty() ? from : localized(u"%1 to %2"_s).arg(from, to);
}

QString EventCalendarView::placeText() const
{
    if (DBWorker::isSample())
        return copy->category ? Categories::shownTitle(copy->category) : QString();
    return localized(copy->calendarTitle);
}

QString EventCalendarView::iconName() const
{
    return copy->isEmailCall() ? u"mail"_s : copy->isAppointment() ? u"appointment"_s : u"todo"_s;
}

// Painting

void EventCalendarView::paint(QPainter &painter, const QRectF &frame, const State &state) const
{
    if (frame.width() < 1 || frame.height() < 1)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    paintBack(painter, frame, state);
    painter.setClipRect(frame, Qt::IntersectClip);
    paintWords(painter, frame, state);
    painter.restore();
}

void EventCalendarView::paintBack(QPainter &painter, const QRectF &frame, const State &state) const
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(state.isOverOther ? Theme::eventShadowOverOther : Theme::eventShadow);
    const double blur = state.isOverOther ? 2 : 0.5;
    painter.drawRoundedRect(frame.adjusted(-blur, -0.5, blur, blur), radius + 0.5, radius + 0.5);
    if (state.isOverOther)
        painter.setPen(QPen(Theme::card, 1));
    painter.setBrush(ground(state.isSelected));
    painter.drawRoundedRect(frame, radius, radius);
}

/// Gives back where the text has to end, counted from the leading edge.
double EventCalendarView::paintIcons(QPainter &painter, const QRectF &frame, const State &state) const
{
    constexpr double leastWidth = 64;
    if (frame.width() < leastWidth)
        return frame.width() - 3;
    const double size = iconSize();
    const double top = std::max((frame.height() - size) * 0.5, frame.height() - size - iconGap);
    double left = frame.width() - iconGap - size;
    const auto paintIcon = [&](const QString &name) {
        QRectF place(frame.left() + left, frame.top() + top, size, size);
        if (state.direction == Qt::RightToLeft)
            place.moveLeft(frame.left() + frame.right() - place.right());
        Icons::paint(painter, place.toRect(), name, textColour(), static_cast<int>(size));
    };
    paintIcon(iconName());
    if (!copy->repeat.isEmpty()) {
        left -= betweenIcons + size;
        paintIcon(u"repeat"_s);
    }
    return left - textGap;
}

/// The words stay at what can be seen of a tall item.
void EventCalendarView::paintWords(QPainter &painter, const QRectF &frame, const State &state) const
{
    constexpr double leastHeight = 18;
    const double line = std::max(textHeight(), leastHeight);
    const bool hasSecondLine = !copy->isToDo() && frame.height() >= 2 * line;
    const double end = paintIcons(painter, frame, state);
    const QRectF seen = state.visible.isEmpty() ? frame : frame.intersected(state.visible);
    const double hidden = std::max(0.0, seen.top() - frame.top());
    const double top = std::min(hidden, std::max(0.0, frame.height() - (hasSecondLine ? 2 : 1) * line));
    const auto placeOf = [&](double y, double until) {
        const double height = std::min(line, frame.height());
        QRectF place(frame.left() + textLeft, frame.top() + y, std::max(0.0, until - textLeft), height);
        if (state.direction == Qt::RightToLeft)
            place.moveLeft(frame.left() + frame.right() - place.right());
        return place.toAlignedRect();
    };
    const bool isBesideIcon = frame.height() - top < line + iconSize() + iconGap;
    painter.setFont(titleFont(isDone()));
    painter.setPen(textColour());
    Direction::drawLine(painter, placeOf(top, isBesideIcon ? end : frame.width() - 3), state.direction,
                        title());
    if (!hasSecondLine)
        return;
    const bool isTimeBesideIcon = frame.height() - top < 2 * line + iconSize() + iconGap;
    painter.setFont(Theme::font(Theme::FontRole::Small));
    const QRect place = placeOf(top + line - 2, isTimeBesideIcon ? end : frame.width() - 3);
    const QString whole = timeText();
    const bool fits = TextLines::width(painter.font(), whole) <= place.width();
    Direction::drawLine(painter, place, state.direction, fits ? whole : startText());
}
