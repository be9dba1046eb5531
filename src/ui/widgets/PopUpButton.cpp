#include "widgets/PopUpButton.h"

#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QStandardItemModel>
#include <QStylePainter>

constexpr int leastLetters = 6;

PopUpButton::PopUpButton(const QString &name, QWidget *parent)
    : QComboBox(parent)
{
    setObjectName(name);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(leastLetters);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void PopUpButton::addHeading(const QString &text)
{
    addItem(text);
    QStandardItem *item = static_cast<QStandardItemModel *>(model())->item(count() - 1);
    item->setFlags(Qt::NoItemFlags);
    item->setForeground(Theme::secondaryText);
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
    const int iconRoom = option.currentIcon.isNull() ? 0 : option.iconSize.width() + Theme::unit / 2;
    option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideRight,
                                                  place.width() - iconRoom - Theme::unit / 2);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void PopUpButton::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void PopUpButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)
        Q_EMIT deletePressed();
    else
        QComboBox::keyPressEvent(event);
}
