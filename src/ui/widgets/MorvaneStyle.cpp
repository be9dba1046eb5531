#include "widgets/MorvaneStyle.h"

#include "widgets/ButtonLook.h"
#include "widgets/Icons.h"
#include "widgets/MenuLook.h"
#include "widgets/RoundCorners.h"
#include "widgets/ScrollBarLook.h"
#include "widgets/Shapes.h"
#include "widgets/Theme.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QStyleOption>
#include <QTextEdit>

using namespace Qt::Literals::StringLiterals;
using namespace Shapes;

constexpr int buttonMinimumWidth = 84;
constexpr int buttonPadding = 12;
constexpr int fieldInset = 5;
/// Around the words of a check box, beside and above them.
constexpr QSize roomOfRing(4, 2);

MorvaneStyle::MorvaneStyle()
    : QProxyStyle(u"Fusion"_s)
{}

void MorvaneStyle::drawFocusRing(QPainter &painter, const QRectF &around, qreal radius, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, 2));
    painter.drawRoundedRect(around.adjusted(1, 1, -1, -1), radius, radius);
    painter.restore();
}

static void drawField(const QStyleOption *option, QPainter *painter)
{
    drawRounded(painter, bounds(option->rect), Theme::control, Theme::controlBorder);
    if (option->state.testFlag(QStyle::State_HasFocus))
        MorvaneStyle::drawFocusRing(*painter, option->rect, Theme::controlRadius, Theme::focusRing);
}

static QRect around(const QRect &rect, const QSize &room)
{
    return rect.adjusted(-room.width(), -room.height(), room.width(), room.height());
}

static bool isInSpinBox(const QWidget *widget)
{
    return widget && qobject_cast<const QAbstractSpinBox *>(widget->parentWidget());
}

/// The window with the list of a pop-up button.
static bool isPopUpList(const QWidget *widget)
{
    return widget && widget->inherits("QComboBoxPrivateContainer");
}

void MorvaneStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        return ButtonLook::draw(option, painter);
    case PE_PanelLineEdit:
        // The text of a number field stands in a field already.
        return isInSpinBox(widget) ? void() : drawField(option, painter);
    case PE_IndicatorCheckBox:
        return ButtonLook::drawCheck(option, painter);
    case PE_IndicatorRadioButton:
        return ButtonLook::drawRadio(option, painter);
    case PE_FrameFocusRect:
        if (!qobject_cast<const QAbstractButton *>(widget))
            return;
        return drawFocusRing(*painter, around(option->rect, roomOfRing), Theme::controlRadius,
                             Theme::focusRing);
    case PE_Frame:
        if (isPopUpList(widget))
            return RoundCorners::drawPanel(*painter, *widget, Theme::controlRadius);
        // The frame of a text that is written in; no other frames are drawn with this shape.
        return qobject_cast<const QTextEdit *>(widget)
                   ? drawField(option, painter)
                   : QProxyStyle::drawPrimitive(element, option, painter, widget);
    case PE_FrameMenu:
        return;
    case PE_PanelMenu:
        return RoundCorners::drawPanel(*painter, *widget, Theme::controlRadius);
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void MorvaneStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                               const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (element == CE_MenuItem && item && item->menuItemType == QStyleOptionMenuItem::Separator)
        return MenuLook::drawSeparator(item->rect, painter);
    if (element == CE_MenuItem && item) {
        MenuLook::drawSelection(option, painter);
        MenuLook::drawTick(*item, painter);
        const QStyleOptionMenuItem plain = MenuLook::withoutMarks(*item);
        return QProxyStyle::drawControl(element, &plain, painter, widget);
    }
    if (element == CE_MenuBarItem && item) {
        MenuLook::drawBar(option->rect, painter);
        return MenuLook::drawBarItem(*item, painter);
    }
    if (element == CE_MenuBarEmptyArea)
        return MenuLook::drawBar(option->rect, painter);
    const auto *toolButton = qstyleoption_cast<const QStyleOptionToolButton *>(option);
    if (element == CE_ToolButtonLabel && ButtonLook::hasWordsBesideIcon(toolButton))
        return ButtonLook::drawWordsBesideIcon(*toolButton, painter);
    if (element == CE_PushButtonLabel && (ButtonLook::isDefault(option) || ButtonLook::takesAway(option))) {
        QStyleOptionButton button(*qstyleoption_cast<const QStyleOptionButton *>(option));
        button.palette.setColor(QPalette::Active, QPalette::ButtonText, ButtonLook::wordsOf(option));
        button.palette.setColor(QPalette::Inactive, QPalette::ButtonText, ButtonLook::wordsOf(option));
        return QProxyStyle::drawControl(element, &button, painter, widget);
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

static void drawComboBox(const QStyleOptionComplex *option, QPainter *painter, const QRect &arrow)
{
    drawRounded(painter, bounds(option->rect), ButtonLook::plainFill(option), Theme::controlBorder);
    Icons::paint(*painter, arrow, u"chevron-down"_s, Theme::secondaryText, 16);
    if (option->state.testFlag(QStyle::State_HasFocus))
        MorvaneStyle::drawFocusRing(*painter, option->rect, Theme::controlRadius, Theme::focusRing);
}

static void drawStep(QPainter *painter, const QRect &place, const QString &icon, bool isPossible)
{
    constexpr int iconSize = 12;
    Icons::paint(*painter, place, icon, isPossible ? Theme::secondaryText : Theme::disabledText, iconSize);
}

void MorvaneStyle::drawSpinBox(const QStyleOptionSpinBox &option, QPainter *painter,
                               const QWidget *widget) const
{
    drawField(&option, painter);
    if (option.buttonSymbols == QAbstractSpinBox::NoButtons)
        return;
    drawStep(painter, subControlRect(CC_SpinBox, &option, SC_SpinBoxUp, widget), u"chevron-up"_s,
             option.stepEnabled.testFlag(QAbstractSpinBox::StepUpEnabled));
    drawStep(painter, subControlRect(CC_SpinBox, &option, SC_SpinBoxDown, widget), u"chevron-down"_s,
             option.stepEnabled.testFlag(QAbstractSpinBox::StepDownEnabled));
}

void MorvaneStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                      QPainter *painter, const QWidget *widget) const
{
    if (control == CC_ScrollBar)
        return ScrollBarLook::draw(option, painter,
                                   subControlRect(control, option, SC_ScrollBarSlider, widget));
    if (control == CC_ComboBox)
        return drawComboBox(option, painter, subControlRect(control, option, SC_ComboBoxArrow, widget));
    const auto *spinBox = qstyleoption_cast<const QStyleOptionSpinBox *>(option);
    if (control == CC_SpinBox && spinBox)
        return drawSpinBox(*spinBox, painter, widget);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

int MorvaneStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return Theme::scrollBarWidth;
    case PM_ScrollBarSliderMin:
        return ScrollBarLook::handleMinimum;
    case PM_ScrollView_ScrollBarSpacing:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_MenuBarPanelWidth:
        return 0;
    case PM_RadioButtonLabelSpacing:
    case PM_CheckBoxLabelSpacing:
        return Theme::unit;
    case PM_ToolTipLabelFrameWidth:
        return Theme::unit * 3 / 4;
    case PM_MenuVMargin:
        return Theme::unit / 2;
    case PM_MenuBarItemSpacing:
        return Theme::unit / 4;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return 18;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int MorvaneStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                            QStyleHintReturn *answer) const
{
    switch (hint) {
    case SH_ScrollBar_LeftClickAbsolutePosition:
    case SH_ItemView_ArrowKeysNavigateIntoChildren:
        return 1;
    case SH_ComboBox_Popup:
    case SH_EtchDisabledText:
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_ScrollBar_Transient:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, answer);
    }
}

QSize MorvaneStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                     const QWidget *widget) const
{
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (type == CT_ToolButton &&
        ButtonLook::hasWordsBesideIcon(qstyleoption_cast<const QStyleOptionToolButton *>(option)))
        size += QSize(Theme::unit, 0);
    else if (type == CT_PushButton)
        size = size.expandedTo(
            {std::max(buttonMinimumWidth, contents.width() + 2 * buttonPadding), Theme::controlHeight});
    else if (type == CT_LineEdit || type == CT_ComboBox || type == CT_SpinBox)
        size.setHeight(std::max(size.height(), Theme::controlHeight));
    else if (type == CT_MenuItem && item && item->menuItemType != QStyleOptionMenuItem::Separator)
        size = QSize(size.width() + 2 * Theme::unit + (MenuLook::isCheckable(*item) ? MenuLook::tickRoom : 0),
                     std::max(size.height(), MenuLook::itemHeight));
    else if (type == CT_RadioButton || type == CT_CheckBox)
        size += 2 * roomOfRing;
    else if (type == CT_MenuBarItem)
        size += QSize(Theme::unit, Theme::unit / 2);
    return size;
}

static QRect comboPart(const QStyleOptionComplex *option, QStyle::SubControl part)
{
    constexpr int arrowWidth = 28;
    QRect rect = option->rect;
    if (part == QStyle::SC_ComboBoxArrow)
        rect.setLeft(rect.right() - arrowWidth);
    else
        rect.adjust(Theme::unit, 2, -arrowWidth, -2);
    return QStyle::visualRect(option->direction, option->rect, rect);
}

QRect MorvaneStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                                   SubControl subControl, const QWidget *widget) const
{
    if (control == CC_ComboBox && (subControl == SC_ComboBoxArrow || subControl == SC_ComboBoxEditField))
        return comboPart(option, subControl);
    const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control == CC_ScrollBar && slider)
        return visualRect(option->direction, option->rect, ScrollBarLook::partOf(*slider, subControl));
    const QRect rect = QProxyStyle::subControlRect(control, option, subControl, widget);
    if (control == CC_SpinBox && subControl == SC_SpinBoxEditField)
        return rect.adjusted(fieldInset, 0, 0, 0);
    return rect;
}

/// Texts in fields stand a little away from the edge.
QRect MorvaneStyle::subElementRect(SubElement element, const QStyleOption *option,
                                   const QWidget *widget) const
{
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    if (element != SE_LineEditContents || isInSpinBox(widget))
        return rect;
    return rect.adjusted(fieldInset, 0, -fieldInset, 0);
}

QIcon MorvaneStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    if (icon == SP_LineEditClearButton)
        return Icons::icon(u"clear"_s, Theme::secondaryText);
    return QProxyStyle::standardIcon(icon, option, widget);
}

/// A label guesses whether its text is markup, and many texts come from elsewhere: titles of tasks, names of
/// calendars, what an error says. Who wants markup asks for it.
static void showAsWritten(QLabel *label)
{
    if (label && label->textFormat() == Qt::AutoText && !label->inherits("QTipLabel"))
        label->setTextFormat(Qt::PlainText);
}

void MorvaneStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    showAsWritten(qobject_cast<QLabel *>(widget));
    if (qobject_cast<QAbstractButton *>(widget) || qobject_cast<QComboBox *>(widget))
        widget->setAttribute(Qt::WA_Hover);
    if (qobject_cast<QMenu *>(widget) || isPopUpList(widget))
        RoundCorners::give(*widget, Theme::controlRadius);
    // The lines stay clear of the corners.
    if (isPopUpList(widget))
        widget->setContentsMargins(1, Theme::unit / 2, 1, Theme::unit / 2);
    if (qobject_cast<QPushButton *>(widget))
        widget->installEventFilter(this);
}

void MorvaneStyle::unpolish(QWidget *widget)
{
    widget->removeEventFilter(this);
    QProxyStyle::unpolish(widget);
}

bool MorvaneStyle::eventFilter(QObject *watched, QEvent *event)
{
    auto *button = event->type() == QEvent::KeyPress ? qobject_cast<QPushButton *>(watched) : nullptr;
    if (!button || button->autoDefault() || button->isDefault() || !button->isEnabled())
        return QProxyStyle::eventFilter(watched, event);
    const auto *press = static_cast<QKeyEvent *>(event);
    const bool isReturn = press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter;
    if (!isReturn || (press->modifiers() & ~Qt::KeypadModifier))
        return QProxyStyle::eventFilter(watched, event);
    if (!press->isAutoRepeat())
        button->click();
    return true;
}
