#include "widgets/EmptyState.h"

#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <QPainter>

constexpr int discSize = 96;
constexpr int iconSize = 44;
constexpr int textWidth = 360;

EmptyState::EmptyState(const QString &iconName, const QString &sentence, QWidget *parent)
    : QWidget(parent)
    , icon(iconName)
    , text(sentence)
{
    setAccessibleName(sentence);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFont(Theme::font(Theme::FontRole::Large));
}

void EmptyState::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int usableWidth = std::min(textWidth, width() - 2 * Theme::contentMargin);
    const QRect words = fontMetrics().boundingRect(QRect(0, 0, usableWidth, height()),
                                                   Qt::AlignHCenter | Qt::TextWordWrap, text);
    const int total = discSize + 2 * Theme::unit + words.height();
    const int top = std::max(0, (height() - total) * 2 / 5);
    const QRect disc((width() - discSize) / 2, top, discSize, discSize);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::emptyDisc);
    painter.drawEllipse(disc);
    Icons::paint(painter, disc, icon, Theme::emptyIcon, iconSize);
    painter.setPen(Theme::secondaryText);
    const QRect place((width() - usableWidth) / 2, disc.bottom() + 2 * Theme::unit, usableWidth,
                      words.height() + 2);
    painter.drawText(place, Qt::AlignHCenter | Qt::TextWordWrap, text);
}
