#include "shell/help/ShortcutsOverlay.h"

#include "foundation/Localization.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int overlayMargin = 4 * Theme::unit;
constexpr int columnGap = 5 * Theme::unit;
constexpr int keysGap = 2 * Theme::unit;

} // namespace

ShortcutsOverlay::ShortcutsOverlay(QWidget &window, std::vector<Line> shown)
    : QWidget(&window)
    , lines(std::move(shown))
    , focusBefore(window.focusWidget())
{
    setObjectName(u"ShortcutsOverlay"_s);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(localized(u"Keyboard Shortcuts"_s));
    setAccessibleDescription(text());
    setGeometry(window.rect());
    window.installEventFilter(this);
    show();
    raise();
    setFocus(Qt::PopupFocusReason);
}

void ShortcutsOverlay::toggle(QWidget &window, std::vector<Line> lines)
{
    if (auto *open = window.findChild<ShortcutsOverlay *>({}, Qt::FindDirectChildrenOnly))
        open->end();
    else
        new ShortcutsOverlay(window, std::move(lines));
}

QString ShortcutsOverlay::text() const
{
    QStringList all;
    for (const Line &line : lines)
        all.append(u"%1: %2"_s.arg(line.command, line.keys));
    return all.join(u'\n');
}

void ShortcutsOverlay::end()
{
    if (std::exchange(isEnding, true))
        return;
    hide();
    if (focusBefore)
        focusBefore->setFocus(Qt::PopupFocusReason);
    deleteLater();
    setParent(nullptr);
}

void ShortcutsOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(Theme::veil));
    const QFontMetrics title(Theme::font(Theme::FontRole::Title));
    const QFontMetrics metrics(Theme::font(Theme::FontRole::Small));
    const QRect inside = rect().adjusted(overlayMargin, overlayMargin, -overlayMargin, -overlayMargin);
    painter.setPen(Theme::textOnVeil);
    painter.setFont(Theme::font(Theme::FontRole::Title));
    painter.drawText(inside, Qt::AlignLeading | Qt::AlignTop, localized(u"Keyboard Shortcuts"_s));
    painter.setFont(Theme::font(Theme::FontRole::Small));
    painter.setPen(Theme::startText);
    painter.drawText(inside, Qt::AlignTrailing | Qt::AlignTop, localized(u"Any key closes this"_s));
    const QRect body = inside.adjusted(0, title.height() + 2 * Theme::unit, 0, 0);
    int commandWidth = 0;
    int keysWidth = 0;
    for (const Line &line : lines) {
        commandWidth = std::max(commandWidth, metrics.horizontalAdvance(line.command));
        keysWidth = std::max(keysWidth, metrics.horizontalAdvance(line.keys));
    }
    const int wholeWidth = keysWidth + keysGap + commandWidth + columnGap;
    const int columns = std::max(1, (body.width() + columnGap) / wholeWidth);
    const int perColumn = (int(lines.size()) + columns - 1) / columns;
    const int pitch = std::min(metrics.height() + Theme::unit, body.height() / std::max(1, perColumn));
    for (int place = 0; place < int(lines.size()); ++place) {
        const QRect row(body.left() + place / perColumn * wholeWidth, body.top() + place % perColumn * pitch,
                        wholeWidth - columnGap, pitch);
        const QRect keys = QStyle::visualRect(layoutDirection(), body, row.adjusted(0, 0, -commandWidth, 0));
        const QRect words =
            QStyle::visualRect(layoutDirection(), body, row.adjusted(keysWidth + keysGap, 0, 0, 0));
        painter.setPen(Theme::sidebarAccent);
        painter.drawText(keys, Qt::AlignLeading | Qt::AlignVCenter, lines[size_t(place)].keys);
        painter.setPen(Theme::textOnVeil);
        painter.drawText(words, Qt::AlignLeading | Qt::AlignVCenter, lines[size_t(place)].command);
    }
}

bool ShortcutsOverlay::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // The keys that end it do nothing else.
        event->accept();
        return true;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const bool isModifier = key == Qt::Key_Control || key == Qt::Key_Shift || key == Qt::Key_Alt ||
                                key == Qt::Key_AltGr || key == Qt::Key_Meta;
        if (!isModifier)
            end();
        return true;
    }
    case QEvent::MouseButtonPress:
    case QEvent::FocusOut:
        end();
        return true;
    default:
        return QWidget::event(event);
    }
}

bool ShortcutsOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return false;
}
