#include "widgets/ScreenToolBar.h"

#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/Direction.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>

/// Wide enough for the names of all lists; a longer one is the user's own.
constexpr int leastTitleWidth = 160;

/// A title that is cut off where the controls need its room.
class ScreenToolBar::TitleLabel : public QWidget
{
public:
    explicit TitleLabel(QWidget *parent)
        : QWidget(parent)
    {
        Accessibility::describe(*this, {.role = QAccessible::Heading});
        Appearance::setFont(*this, Theme::FontRole::Title);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    }
    void setText(const QString &title)
    {
        text = title;
        setAccessibleName(title);
        updateGeometry();
        update();
    }
    QSize sizeHint() const override
    {
        return {fontMetrics().horizontalAdvance(text) + 1, fontMetrics().height()};
    }
    QSize minimumSizeHint() const override
    {
        return {std::min(sizeHint().width(), leastTitleWidth), sizeHint().height()};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setPen(Theme::text);
        painter.drawText(rect(), QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter),
                         fontMetrics().elidedText(text, Qt::ElideRight, width()));
    }

private:
    QString text;
};

ScreenToolBar::ScreenToolBar(const QString &title, QWidget *parent)
    : QWidget(parent)
    , titleLabel(new TitleLabel(this))
    , row(new QHBoxLayout(this))
{
    row->setContentsMargins(
        Direction::margins(*this, Theme::contentMargin + Theme::unit / 2, 0, 2 * Theme::unit, 0));
    row->setSpacing(2 * Theme::unit);
    row->addWidget(titleLabel, 1);
    setTitle(title);
}

void ScreenToolBar::setTitle(const QString &title)
{
    titleLabel->setText(title);
}

void ScreenToolBar::addControl(QWidget *control)
{
    row->addWidget(control);
}

void ScreenToolBar::setMiddle(QWidget *wanted)
{
    constexpr int share = 4;
    middle = wanted;
    // The window is not to be wider for it.
    middle->hide();
    row->insertWidget(1, middle, share);
}

void ScreenToolBar::resizeEvent(QResizeEvent *event)
{
    constexpr int leastMiddleWidth = 120;
    QWidget::resizeEvent(event);
    if (!middle)
        return;
    const QMargins margins = row->contentsMargins();
    int taken = margins.left() + margins.right();
    for (int place = 0; place < row->count(); ++place) {
        QWidget *const part = row->itemAt(place)->widget();
        if (part != middle)
            taken += part->sizeHint().width() + row->spacing();
    }
    middle->setVisible(width() - taken >= leastMiddleWidth);
}
