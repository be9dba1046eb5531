#include "shell/people/WaitingStrip.h"

#include "foundation/Alert.h"
#include "foundation/Localization.h"
#include "objectstore/StoreChanges.h"
#include "records/OpenLink.h"
#include "records/people/WaitingFor.h"
#include "store/state/NotificationNames.h"
#include "widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

bool openAskingMail(const ContactPtr &contact, const std::vector<TaskPtr> &tasks)
{
    const auto isAddress = [](const auto &email) { return !email->mail().trimmed().isEmpty(); };
    if (contact && !std::ranges::any_of(contact->email(), isAddress))
        return Alert::run(
                   {.message = localized(u"%1 has no email address."_s).arg(contact->fullName()),
                    .informativeText = localized(u"You can ask in another way, and have it noted here."_s),
                    .buttons = {localized(u"Note That I Asked"_s), localized(u"Cancel"_s)}}) ==
               Alert::firstButton;
    return contact && !tasks.empty() &&
           openLink(WaitingFor::askingMail(*contact, tasks), localized(u"Ask Again"_s), contact->fullName());
}

WaitingStrip::WaitingStrip(std::function<ContactPtr()> shownContact, QWidget *parent)
    : QWidget(parent)
    , contact(std::move(shownContact))
    , label(makeTextLabel({}, Theme::FontRole::Small, Theme::secondaryText))
{
    setObjectName(u"waitingStrip"_s);
    label->setObjectName(u"labelWaiting"_s);
    auto *button = new QPushButton(localized(u"Ask Again"_s));
    button->setObjectName(u"buttonAskAgain"_s);
    button->setToolTip(localized(u"Opens a mail with the open tasks, and notes that you asked"_s));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, Theme::unit, 0, 0);
    row->setSpacing(Theme::unit);
    row->addWidget(label, 1);
    row->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this] {
        const ContactPtr shown = contact();
        const std::vector<TaskPtr> tasks = shown ? WaitingFor::tasksOf(*shown) : std::vector<TaskPtr>();
        if (openAskingMail(shown, tasks))
            WaitingFor::noteAsking(tasks);
    });
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &WaitingStrip::load);
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (changes.concerns(EntityTask::entityName))
                soon.start(0);
        }));
    // Other calendars are shown.
    observations.push_back(NotificationCenter::defaultCenter().addObserver(notifications::iCloudChange,
                                                                           [this] { soon.start(0); }));
    load();
}

void WaitingStrip::load()
{
    const ContactPtr shown = contact();
    const QString words =
        shown && shown->context() && !shown->isDeleted() ? WaitingFor::inWords(*shown) : QString();
    label->setText(words);
    setHidden(words.isEmpty());
}
