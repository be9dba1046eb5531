#include "widgets/TextLabel.h"

#include <QLabel>

QLabel *makeTextLabel(const QString &text, Theme::FontRole role, const QColor &color)
{
    auto *label = new QLabel(text);
    label->setFont(Theme::font(role));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}
