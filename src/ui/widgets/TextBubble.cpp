#include "widgets/TextBubble.h"

#include "widgets/Icons.h"
#include "widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

using namespace Qt::Literals::StringLiterals;

constexpr int textWidth = 320;
constexpr int infoIconSize = 20;

TextBubble::TextBubble(const QString &text, QWidget *parent)
    : Popover(parent)
{
    setObjectName(u"textBubble"_s);
    setAccessibleName(text);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit, 2 * Theme::unit);
    row->setSpacing(2 * Theme::unit);
    auto *icon = new QLabel;
    icon->setPixmap(Icons::pixmap(u"info"_s, Theme::accent, infoIconSize, devicePixelRatioF()));
    row->addWidget(icon, 0, Qt::AlignTop);
    QLabel *label = makeTextLabel(readablePart(text), Theme::FontRole::Body, Theme::text);
    label->setFixedWidth(textWidth);
    label->setFixedHeight(label->heightForWidth(textWidth));
    row->addWidget(label);
}

TextBubble *TextBubble::show(const QString &text, QWidget &about, const QRect &part)
{
    auto *bubble = new TextBubble(text, &about);
    bubble->showBeside(about, part);
    bubble->setFocus();
    return bubble;
}

QString TextBubble::text() const
{
    return accessibleName();
}

/// It is read and done with: any key that would press a button closes it.
void TextBubble::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space)
        close();
    else
        Popover::keyPressEvent(event);
}
