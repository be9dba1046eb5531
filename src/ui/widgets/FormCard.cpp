#include "widgets/FormCard.h"

#include "widgets/Theme.h"

#include <QPainter>
#include <QVBoxLayout>

FormCard::FormCard(QWidget *parent)
    : QWidget(parent)
{
    auto *chain = new QVBoxLayout(this);
    chain->setContentsMargins(1, 1, 1, 1);
    chain->setSpacing(0);
}

void FormCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::cardBorder);
    painter.setBrush(Theme::card);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::cardRadius,
                            Theme::cardRadius);
}
