#include "shell/devices/DeviceRow.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/TextLabel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

DeviceRow::DeviceRow(Theme::FontRole titleRole, QWidget *parent)
    : QWidget(parent)
    , title(makeTextLabel({}, titleRole, Theme::text))
    , detail(makeTextLabel({}, Theme::FontRole::Small, Theme::secondaryText))
    , remove(new QPushButton(localized(u"Remove…"_s)))
{
    Accessibility::describe(*this, {.role = QAccessible::ListItem,
                                    .name = [this] { return firstPart(shown.title); },
                                    .description = [this] { return firstPart(shown.detail); }});
    setObjectName(u"DeviceRow"_s);
    title->setObjectName(u"labelTitle"_s);
    title->setWordWrap(false);
    // The row is as wide as there is room, whatever its title.
    title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    detail->setObjectName(u"labelDetail"_s);
    detail->setTextInteractionFlags(Qt::TextSelectableByMouse);
    remove->setObjectName(u"buttonRemove"_s);
    remove->setAutoDefault(false);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title);
    texts->addWidget(detail);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Theme::unit);
    row->addLayout(texts, 1);
    row->addWidget(remove, 0, Qt::AlignVCenter);
    connect(remove, &QPushButton::clicked, this, [this] { Q_EMIT removeWanted(shown); });
}

void DeviceRow::setLine(const DeviceHealth::Line &line)
{
    const bool isOther = shown.title != line.title;
    shown = line;
    detail->setText(readablePart(line.detail));
    remove->setVisible(line.canBeRemoved());
    remove->setAccessibleName(localized(u"Remove %1"_s).arg(firstPart(line.title)));
    fitTitle();
    if (isOther)
        Accessibility::nameChanged(*this);
}

void DeviceRow::fitTitle()
{
    const QString words = firstPart(shown.title).simplified();
    const QString fitting = title->fontMetrics().elidedText(words, Qt::ElideRight, title->width());
    title->setText(fitting);
    title->setToolTip(fitting == words ? QString() : words);
    title->setAccessibleName(words);
}

void DeviceRow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    // The layout gives the title its width afterwards, unless it is asked to now.
    layout()->activate();
    fitTitle();
}

void DeviceRow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fitTitle();
}
