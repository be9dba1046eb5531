#include "widgets/EmptyState.h"

#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <QPainter>
#include <QPushButton>

constexpr int emptyDiscSize = 96;
constexpr int emptyIconSize = 44;
constexpr int textWidth = 360;

EmptyState::EmptyState(const QString &iconName, const QString &sentence, QWidget *parent)
    : QWidget(parent)
    , icon(iconName)
{
    Accessibility::describe(*this, {.role = QAccessible::Grouping});
    setSentence(sentence);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    Appearance::setFont(*this, Theme::FontRole::Large);
}

void EmptyState::setSentence(const QString &sentence)
{
    text = sentence;
    setAccessibleName(sentence);
    update();
}

void EmptyState::setAction(const QString &title, const QString &name)
{
    action = new QPushButton(title, this);
    Appearance::setFont(*action, Theme::FontRole::Body);
    action->setObjectName(name);
    setAttribute(Qt::WA_TransparentForMouseEvents, false);
    connect(action, &QPushButton::clicked, this, &EmptyState::actionClicked);
}

/// Everything in a column, a little above the middle.
EmptyState::Places EmptyState::places() const
{
    const int usableWidth = std::min(textWidth, width() - 2 * Theme::contentMargin);
    const QRect words = fontMetrics().boundingRect(QRect(0, 0, usableWidth, height()),
                                                   Qt::AlignHCenter | Qt::TextWordWrap, text);
    const QSize button = action ? action->sizeHint() : QSize();
    const int buttonPart = action ? 2 * Theme::unit + button.height() : 0;
    const int total = emptyDiscSize + 2 * Theme::unit + words.height() + buttonPart;
    const int top = std::max(0, (height() - total) * 2 / 5);
    Places result;
    result.disc = QRect((width() - emptyDiscSize) / 2, top, emptyDiscSize, emptyDiscSize);
    result.words = QRect((width() - usableWidth) / 2, result.disc.bottom() + 2 * Theme::unit, usableWidth,
                         words.height() + 2);
    result.action =
        QRect(QPoint((width() - button.width()) / 2, result.words.bottom() + 2 * Theme::unit), button);
    return result;
}

void EmptyState::resizeEvent(QResizeEvent *)
{
    if (action)
        action->setGeometry(places().action);
}

void EmptyState::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Places at = places();
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::emptyDisc);
    painter.drawEllipse(at.disc);
    Icons::paint(painter, at.disc, icon, Theme::emptyIcon, emptyIconSize);
    painter.setPen(Theme::secondaryText);
    painter.drawText(at.words, Qt::AlignHCenter | Qt::TextWordWrap, text);
}
