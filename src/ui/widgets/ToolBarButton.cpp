#include "widgets/ToolBarButton.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/MorvaneStyle.h"
#include "widgets/Theme.h"

#include <QAccessibleActionInterface>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

constexpr int sectionWidth = 30;
constexpr int toolIconSize = 18;
constexpr int toolPadding = 12;
constexpr int toolIconGap = 6;

ToolBarButton::ToolBarButton(ActionType type, QWidget *parent)
    : QWidget(parent)
    , shownType(type)
{
    describe();
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Appearance::setFont(*this, Theme::FontRole::BodyStrong);
    setActionType(type);
}

void ToolBarButton::describe()
{
    const auto actions = [this] {
        std::vector<AccessibleAction> possible = {
            {QAccessibleActionInterface::pressAction(), [this] { Q_EMIT buttonAdd(shownType); }, u"Space"_s}};
        if (hasPopupSection())
            possible.push_back(
                {QAccessibleActionInterface::showMenuAction(), [this] { showMenu(); }, u"Down"_s});
        return possible;
    };
    Accessibility::describe(*this, {.role = QAccessible::Button, .actions = actions});
}

void ToolBarButton::setActionType(ActionType type)
{
    shownType = type;
    setAccessibleName(title());
    setToolTip(isQuiet() ? title() : QString());
    setSizePolicy(isQuiet() ? QSizePolicy::Maximum : QSizePolicy::Fixed, QSizePolicy::Fixed);
    updateGeometry();
    update();
}

QString ToolBarButton::titleOf(ActionType type)
{
    switch (type) {
    case NewTaskOnStart:
    case NewTask:
        return localized(u"New Task"_s);
    case NewProject:
        return localized(u"NewProject"_s);
    case NewContact:
        return localized(u"New Contact"_s);
    case NewCompany:
        return localized(u"New Company"_s);
    case NewNote:
        return localized(u"New Note"_s);
    case ImportContacts:
        return localized(u"Import contacts"_s);
    case NewCategory:
        return localized(u"New Category"_s);
    case Calendars:
        return localized(u"Calendars"_s);
    case AskAgain:
        return localized(u"Ask Again"_s);
    }
    return {};
}

QString ToolBarButton::title() const
{
    return titleOf(shownType);
}

bool ToolBarButton::hasPopupSection() const
{
    return shownType <= NewNote;
}

QList<ToolBarButton::ActionType> ToolBarButton::menuTypes() const
{
    QList<ActionType> types = {NewTask, NewProject, NewContact, NewCompany};
    types.removeIf([this](ActionType type) { return titleOf(type) == title(); });
    return types;
}

QSize ToolBarButton::sizeHint() const
{
    const int text = fontMetrics().horizontalAdvance(title());
    return {2 * toolPadding + toolIconSize + toolIconGap + text + (hasPopupSection() ? sectionWidth : 0),
            std::max(Theme::controlHeight + 2, fontMetrics().height() + 14)};
}

QSize ToolBarButton::minimumSizeHint() const
{
    return isQuiet() ? QSize(2 * toolPadding + toolIconSize, sizeHint().height()) : sizeHint();
}

QRect ToolBarButton::popupSection() const
{
    if (!hasPopupSection())
        return {};
    return QStyle::visualRect(layoutDirection(), rect(),
                              QRect(width() - sectionWidth, 0, sectionWidth, height()));
}

void ToolBarButton::setUnseen()
{
    setEnabled(false);
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
    hide();
}

QString ToolBarButton::iconName() const
{
    if (shownType == Calendars)
        return u"calendars"_s;
    if (shownType == AskAgain)
        return u"mail"_s;
    return shownType == ImportContacts ? u"people"_s : u"add"_s;
}

void ToolBarButton::paintBack(QPainter &painter) const
{
    if (isQuiet()) {
        painter.setPen(Theme::controlBorder);
        painter.setBrush(isPressed ? Theme::controlPressed : isHovered ? Theme::hover : Theme::control);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::controlRadius,
                                Theme::controlRadius);
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(isPressed ? Theme::accentPressed : isHovered ? Theme::accentHover : Theme::accent);
    painter.drawRoundedRect(rect(), Theme::controlRadius, Theme::controlRadius);
}

void ToolBarButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBack(painter);
    const QColor ink = !isEnabled() ? Theme::disabledText : isQuiet() ? Theme::text : Theme::textOnAccent;
    const auto placed = [this](int left, int wide) {
        return QStyle::visualRect(layoutDirection(), rect(), QRect(left, 0, wide, height()));
    };
    const bool hasWords = width() >= sizeHint().width();
    Icons::paint(painter, placed(hasWords ? toolPadding : (width() - toolIconSize) / 2, toolIconSize),
                 iconName(), ink, toolIconSize);
    painter.setPen(ink);
    const int textLeft = toolPadding + toolIconSize + toolIconGap;
    if (hasWords)
        painter.drawText(placed(textLeft, fontMetrics().horizontalAdvance(title()) + 1), Qt::AlignCenter,
                         title());
    if (hasPopupSection()) {
        const QRect section = popupSection();
        const int line = isRightToLeft() ? section.right() : section.left();
        painter.setPen(Theme::accentPressed);
        painter.drawLine(line, Theme::unit, line, height() - Theme::unit);
        Icons::paint(painter, section, u"chevron-down"_s, Theme::textOnAccent, 16);
    }
    if (hasFocus())
        MorvaneStyle::drawFocusRing(painter, rect(), Theme::controlRadius, Theme::text);
}

void ToolBarButton::addMenuItem(QMenu &menu, ActionType type)
{
    QAction *action = menu.addAction(titleOf(type), this, [this, type] { Q_EMIT buttonAdd(type); });
    action->setEnabled(availableTypes.contains(type));
}

void ToolBarButton::showMenu()
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const ActionType type : menuTypes())
        addMenuItem(*menu, type);
    menu->popup(mapToGlobal(QPoint(0, height() + Theme::unit / 2)));
}

void ToolBarButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (popupSection().contains(event->position().toPoint()))
        return showMenu();
    isPressed = true;
    update();
}

void ToolBarButton::mouseReleaseEvent(QMouseEvent *event)
{
    const bool wasPressed = std::exchange(isPressed, false);
    update();
    if (wasPressed && rect().contains(event->position().toPoint()))
        Q_EMIT buttonAdd(shownType);
}

void ToolBarButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Q_EMIT buttonAdd(shownType);
    case Qt::Key_Down:
        return hasPopupSection() ? showMenu() : QWidget::keyPressEvent(event);
    default:
        QWidget::keyPressEvent(event);
    }
}

void ToolBarButton::enterEvent(QEnterEvent *)
{
    isHovered = true;
    update();
}

void ToolBarButton::leaveEvent(QEvent *)
{
    isHovered = false;
    update();
}
