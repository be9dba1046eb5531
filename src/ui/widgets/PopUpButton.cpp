#include "widgets/PopUpButton.h"

#include "widgets/ClearKey.h"
#include "widgets/Direction.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStandardItemModel>
#include <QStylePainter>
#include <QStyledItemDelegate>

constexpr int leastLetters = 4;
constexpr int lineHeight = 30;
constexpr int separatorHeight = 9;
constexpr int iconRoom = 24;

namespace {

/// The lines of the list look like those of a menu.
class PopUpDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {size.width() + 2 * Theme::unit,
                isSeparator(index) ? separatorHeight : std::max(lineHeight, size.height())};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const bool isEnabled = index.flags().testFlag(Qt::ItemIsEnabled);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (isSeparator(index)) {
            painter->fillRect(QRect(option.rect.left(), option.rect.center().y(), option.rect.width(), 1),
                              QColor(Theme::divider));
        } else {
            if (isEnabled && option.state.testFlag(QStyle::State_Selected)) {
                painter->setPen(Qt::NoPen);
                painter->setBrush(Theme::selection);
                painter->drawRoundedRect(option.rect.adjusted(4, 1, -4, -1), Theme::controlRadius,
                                         Theme::controlRadius);
            }
            paintText(*painter, option, index, isEnabled);
        }
        painter->restore();
    }

private:
    static bool isSeparator(const QModelIndex &index)
    {
        return index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator");
    }

    /// Words without an icon, such as "None", come first; they line up with those that have one.
    static bool hasIcons(const QAbstractItemModel &model)
    {
        return !model.index(model.rowCount() - 1, 0).data(Qt::DecorationRole).isNull();
    }

    static void paintText(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index,
                          bool isEnabled)
    {
        QRect place = option.rect.adjusted(Theme::unit + 4, 0, -Theme::unit, 0);
        const auto icon = index.data(Qt::DecorationRole).value<QIcon>();
        if (!icon.isNull()) {
            const QRect at(place.left(), place.top(), option.decorationSize.width(), place.height());
            icon.paint(&painter, QStyle::visualRect(option.direction, option.rect, at));
        }
        if (isEnabled && hasIcons(*index.model()))
            place.setLeft(place.left() + iconRoom);
        painter.setFont(isEnabled ? option.font : Theme::font(Theme::FontRole::Small));
        painter.setPen(isEnabled ? Theme::text : Theme::secondaryText);
        Direction::drawLine(painter, QStyle::visualRect(option.direction, option.rect, place),
                            option.direction, index.data().toString());
    }
};

} // namespace

PopUpButton::PopUpButton(const QString &name, QWidget *parent)
    : QComboBox(parent)
{
    setObjectName(name);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(leastLetters);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setItemDelegate(new PopUpDelegate(this));
}

void PopUpButton::addHeading(const QString &text)
{
    addItem(text);
    QStandardItem *item = static_cast<QStandardItemModel *>(model())->item(count() - 1);
    item->setFlags(Qt::NoItemFlags);
}

/// A text that is too long ends in dots.
void PopUpButton::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const QRect place =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    const int iconWidth = option.currentIcon.isNull() ? 0 : option.iconSize.width() + Theme::unit / 2;
    if (currentIndex() < 0 && !placeholderText().isEmpty()) {
        option.currentText = placeholderText();
        option.palette.setColor(QPalette::ButtonText, Theme::secondaryText);
        option.palette.setColor(QPalette::Text, Theme::secondaryText);
    }
    option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideRight,
                                                  place.width() - iconWidth - Theme::unit / 2);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void PopUpButton::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

/// The Delete key belongs to the field although a menu has it too.
bool PopUpButton::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && ClearKey::is(static_cast<QKeyEvent &>(*event)))
        event->accept();
    return QComboBox::event(event);
}

void PopUpButton::keyPressEvent(QKeyEvent *event)
{
    if (ClearKey::is(*event))
        Q_EMIT deletePressed();
    else
        QComboBox::keyPressEvent(event);
}
