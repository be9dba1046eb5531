#include "filters/ContactsTopView.h"

#include "filters/ContactGroups.h"
#include "filters/FilterButton.h"
#include "filters/TasksTabTopView.h"
#include "foundation/Localization.h"
#include "store/state/NotificationNames.h"
#include "widgets/Direction.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>

using namespace Qt::Literals::StringLiterals;

ContactsTopView::ContactsTopView(QWidget *parent)
    : QWidget(parent)
    , buttonFilter(new FilterButton)
    , buttonGroup(new StripButton(u"group"_s, u"group"_s))
{
    setFixedHeight(TasksTabTopView::stripHeight);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(
        Direction::margins(*this, Theme::contentMargin, 0, Theme::contentMargin - Theme::unit, 0));
    row->setSpacing(Theme::unit);
    row->addStretch(1);
    row->addWidget(buttonGroup);
    row->addWidget(buttonFilter);
    buttonGroup->setObjectName(u"buttonGroup"_s);
    buttonFilter->setFilter(&filter);
    // What was chosen before and not saved is not what the list has.
    connect(buttonFilter, &FilterButton::opening, this, &ContactsTopView::readGroup);
    connect(buttonGroup, &QAbstractButton::clicked, this, &ContactsTopView::membersWanted);
    setContactGroup(nullptr);
    // Undo, and whoever else changes a list, changes what its bubble begins with.
    changesHeard = NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) {
            const bool isThere = contactGroup && contactGroup->context() && !contactGroup->isDeleted();
            if (isThere && !buttonFilter->popover() && changes.concerns(EntityContactGroup::entityName))
                setContactGroup(contactGroup);
        });
}

static void showState(StripButton &button, const ContactFilterButtons::Button &state)
{
    using Look = StripButton::Look;
    button.setEnabled(state.isEnabled);
    button.setLook(!state.isEnabled ? Look::Resting : state.isOn ? Look::On : Look::Off, state.label);
}

void ContactsTopView::setContactGroup(const std::shared_ptr<EntityContactGroup> &group)
{
    contactGroup = group;
    const ContactFilterButtons buttons = ContactGroups::activeFilterButtons(group.get());
    buttonFilter->closePopover();
    const bool isList = group && !ContactGroups::isGroup(*group);
    buttonFilter->setAction(
        {localized(u"Save"_s), [this] { clickButtonSave(); },
         isList ? QString() : localized(u"Saving adds a list of these people to the sidebar."_s)});
    showState(*buttonFilter, buttons.filter);
    showState(*buttonGroup, buttons.group);
    readGroup();
}

void ContactsTopView::readGroup()
{
    filter.viewWillAppear(contactGroup.get());
    if (contactGroup && !ContactGroups::isGroup(*contactGroup))
        filter.setFilter(*contactGroup);
}

void ContactsTopView::setLeading(QWidget *widget)
{
    auto *row = static_cast<QHBoxLayout *>(layout());
    delete row->takeAt(0);
    row->insertWidget(0, widget, 1);
    setTabOrder(widget, buttonGroup);
}

void ContactsTopView::toggleFilter()
{
    buttonFilter->togglePopover();
}

bool ContactsTopView::canFilter() const
{
    return buttonFilter->isEnabled();
}

void ContactsTopView::clickButtonSave()
{
    ContactGroups::saveListFilterContacts(filter.getContactGroup(), contactGroup,
                                          [this] { Q_EMIT listChanged(); });
}
