#include "shell/UndoNote.h"

#include "foundation/Localization.h"
#include "records/RecordRemoval.h"
#include "shell/Actions.h"
#include "store/entities/Entities.h"
#include "store/state/NotificationNames.h"
#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/KeyTip.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <set>

using namespace Qt::Literals::StringLiterals;

constexpr auto stays = std::chrono::seconds(8);

UndoNote::UndoNote(QWidget &lower)
    : QFrame(&lower)
    , over(lower)
    , words(new QLabel)
    , button(new QPushButton(Actions::textOf(ActionId::Undo)))
{
    setObjectName(u"undoNote"_s);
    setAccessibleName(localized(u"Deleted"_s));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(2 * Theme::unit, Theme::unit, Theme::unit, Theme::unit);
    row->setSpacing(2 * Theme::unit);
    words->setTextFormat(Qt::PlainText);
    button->setObjectName(u"buttonUndoDeletion"_s);
    button->setToolTip(keytip::of(button->text(), Actions::shortcutOf(ActionId::Undo)));
    row->addWidget(words, 1);
    row->addWidget(button);
    constexpr int lookInterval = 100;
    staying.setInterval(lookInterval);
    connect(&staying, &QTimer::timeout, this, [this] { isVisible() ? raise() : staying.stop(); });
    going.setSingleShot(true);
    going.setInterval(stays);
    connect(&going, &QTimer::timeout, this, &QWidget::hide);
    connect(button, &QPushButton::clicked, this, [this] {
        hide();
        Q_EMIT undoWanted();
    });
    over.installEventFilter(this);
    observation = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { stored(changes); });
    hide();
}

void UndoNote::stored(const StoreChanges &changes)
{
    // What a pass or another device does takes no step of the user away.
    if (changes.author != ChangeAuthor::User && changes.author != ChangeAuthor::Undo &&
        changes.author != ChangeAuthor::Import)
        return;
    static const std::set<std::string_view> told = {EntityTask::entityName,        EntityProject::entityName,
                                                    EntityContacts::entityName,    EntityCompany::entityName,
                                                    EntityNote::entityName,        EntityCategory::entityName,
                                                    EntityContactGroup::entityName};
    std::vector<ObjectPtr> deleted;
    if (changes.author == ChangeAuthor::User) {
        for (const ObjectPtr &object : changes.deleted) {
            if (told.contains(object->entity().name()))
                deleted.push_back(object);
        }
    }
    if (deleted.empty())
        hide();
    else
        tell(deleted);
}

void UndoNote::tell(const std::vector<ObjectPtr> &deleted)
{
    words->setText(readablePart(localized(u"Deleted: %1"_s).arg(RecordRemoval::inWords(deleted))));
    place();
    show();
    raise();
    going.start();
    // Panes that come up meanwhile would lie over it.
    staying.start();
    Accessibility::announce(over, words->text());
}

void UndoNote::place()
{
    constexpr int distance = 3 * Theme::unit;
    const int widest = std::max(0, over.width() - 2 * distance);
    const QSize size = sizeHint().boundedTo({widest, sizeHint().height()});
    setGeometry((over.width() - size.width()) / 2, over.height() - size.height() - distance, size.width(),
                size.height());
}

bool UndoNote::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &over && event->type() == QEvent::Resize && isVisible())
        place();
    return QFrame::eventFilter(watched, event);
}

/// It waits for who is on the way to it.
void UndoNote::enterEvent(QEnterEvent *event)
{
    going.stop();
    QFrame::enterEvent(event);
}

void UndoNote::leaveEvent(QEvent *event)
{
    going.start();
    QFrame::leaveEvent(event);
}

void UndoNote::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Theme::edge, 1));
    painter.setBrush(Theme::card);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::cardRadius,
                            Theme::cardRadius);
}
