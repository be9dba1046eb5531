#include "shell/FirstHints.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "foundation/UserDefaults.h"
#include "objectstore/StoreChanges.h"
#include "shell/Actions.h"
#include "store/entities/Entities.h"
#include "store/queries/DBWorker.h"
#include "store/state/NotificationNames.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString sinceKey = u"hintsSince"_s;
const QString usedKey = u"hintsUsed"_s;
constexpr Seconds firstDay{86400};

struct Hint
{
    QStringView words;
    /// The command whose keys it tells, and the one with the last keys where it is about several.
    ActionId first;
    ActionId last;
};

constexpr std::array hints = {
    Hint{u"Type a task with its date in one line: %1", ActionId::AddInLine, ActionId::AddInLine},
    Hint{u"Put the selected tasks on another day: %1", ActionId::PlanToday, ActionId::PlanOtherDay},
    Hint{u"Find tasks, people and notes: %1", ActionId::Search, ActionId::Search},
    Hint{u"Take anything back: %1", ActionId::Undo, ActionId::Undo},
    Hint{u"Read about this screen: %1", ActionId::HelpHere, ActionId::HelpHere},
};

QString keysOf(const Hint &hint)
{
    const auto keys = [](ActionId id) { return Actions::shortcutOf(id).toString(QKeySequence::NativeText); };
    return hint.first == hint.last ? keys(hint.first) : keys(hint.first) + u" – "_s + keys(hint.last);
}

QStringList usedHints()
{
    return UserDefaults::standard().string(usedKey).split(u' ', Qt::SkipEmptyParts);
}

bool isFirstDay()
{
    UserDefaults &defaults = UserDefaults::standard();
    const Date now = Clock::now();
    if (!defaults.contains(sinceKey))
        defaults.setObject(sinceKey, now.referenceSeconds());
    return now - Date::fromReferenceSeconds(defaults.number(sinceKey)) < firstDay;
}

} // namespace

FirstHints::FirstHints(const Actions &actions, QWidget *parent)
    : QWidget(parent)
    , words(new QLabel)
{
    setObjectName(u"firstHints"_s);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(2 * Theme::unit, Theme::unit, Theme::unit, Theme::unit);
    line->setSpacing(Theme::unit / 2);
    words->setObjectName(u"labelHint"_s);
    Appearance::setFont(*words, Theme::FontRole::Small);
    words->setWordWrap(true);
    words->setTextFormat(Qt::PlainText);
    Appearance::colourText(*words, Theme::sidebarQuiet);
    auto *close = new QToolButton;
    close->setObjectName(u"buttonNoHints"_s);
    close->setAutoRaise(true);
    close->setIcon(Icons::icon(u"close"_s, Theme::sidebarQuiet));
    close->setAccessibleName(localized(u"No more hints"_s));
    close->setToolTip(close->accessibleName());
    // It goes by itself; no stop of the tab key for it.
    close->setFocusPolicy(Qt::NoFocus);
    line->addWidget(words, 1);
    line->addWidget(close, 0, Qt::AlignTop);
    connect(close, &QToolButton::clicked, this, [this] {
        for (int hint = 0; hint < static_cast<int>(hints.size()); ++hint)
            used(hint);
    });
    connect(&actions, &Actions::used, this, &FirstHints::commandUsed);
    observation = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) { lookAt(changes); });
    refresh();
}

void FirstHints::commandUsed(ActionId id)
{
    for (int hint = 0; hint < static_cast<int>(hints.size()); ++hint) {
        const Hint &one = hints[static_cast<size_t>(hint)];
        if (one.first <= id && id <= one.last)
            used(hint);
    }
}

/// Days are given and steps taken back in more ways than by their keys.
void FirstHints::lookAt(const StoreChanges &changes)
{
    if (changes.author == ChangeAuthor::Undo)
        return commandUsed(ActionId::Undo);
    if (changes.author != ChangeAuthor::User)
        return;
    using Task = EntityTask;
    constexpr std::array days = {Task::column<"startDate">(), Task::column<"dueDate">(),
                                 Task::column<"dueSomeDay">()};
    const bool isPlanned = std::ranges::any_of(changes.updated, [&](const StoreChanges::Update &one) {
        return one.object->entity().name() == Task::entityName && std::ranges::any_of(days, [&](int column) {
                   return one.columns.test(static_cast<std::size_t>(column));
               });
    });
    if (isPlanned)
        commandUsed(ActionId::PlanToday);
}

void FirstHints::used(int hint)
{
    QStringList all = usedHints();
    if (all.contains(QString::number(hint)))
        return;
    all << QString::number(hint);
    UserDefaults::standard().setObject(usedKey, all.join(u' '));
    refresh();
}

void FirstHints::refresh()
{
    const QStringList all = usedHints();
    int next = 0;
    while (next < static_cast<int>(hints.size()) && all.contains(QString::number(next)))
        ++next;
    const bool isShown = next < static_cast<int>(hints.size()) && !DBWorker::isSample() && isFirstDay();
    if (isShown) {
        const Hint &hint = hints[static_cast<size_t>(next)];
        words->setText(localized(hint.words.toString()).arg(keysOf(hint)));
    }
    setVisible(isShown);
}

void FirstHints::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(QRect(2 * Theme::unit, 0, width() - 4 * Theme::unit, 1),
                            QColor(Theme::sidebarSelection));
}
