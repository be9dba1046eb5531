#include "shell/people/PeopleDetailViewControllers.h"

#include "foundation/Localization.h"
#include "shell/people/CallSheetWindow.h"
#include "shell/people/NotesStrip.h"
#include "shell/people/WaitingStrip.h"

#include <QPushButton>
#include <QVBoxLayout>

/// Who it is delegated to brings the company along.
static NewTaskRequest newTaskOfContact(const ObjectPtr &record)
{
    const auto contact = std::static_pointer_cast<EntityContacts>(record);
    return {.createWithContact = contact, .createWithCompany = contact->company()};
}

static NotesStrip *makeNotesStrip(RecordPane &pane, QWidget *parent)
{
    auto *notes = new NotesStrip([&pane] { return pane.record(); }, parent);
    QObject::connect(notes, &NotesStrip::opened, &pane, &DetailViewController::recordWanted);
    return notes;
}

/// What they have to do, and what was noted about them.
static QWidget *makeStrips(RecordPane &pane)
{
    const auto contact = [&pane] { return std::static_pointer_cast<EntityContacts>(pane.record()); };
    auto *strips = new QWidget;
    auto *column = new QVBoxLayout(strips);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(new WaitingStrip(contact, strips));
    column->addWidget(makeNotesStrip(pane, strips));
    return strips;
}

static QWidget *makeStripOfCompany(RecordPane &pane)
{
    return makeNotesStrip(pane, &pane);
}

/// Opens the page for a call.
static QWidget *makeCallButton(RecordPane &pane)
{
    auto *button = new QPushButton(localized(QStringLiteral("Call Sheet")));
    button->setObjectName(QStringLiteral("buttonCallSheet"));
    QObject::connect(button, &QPushButton::clicked, &pane, [&pane] {
        if (const ObjectPtr called = pane.record())
            (new CallSheetWindow(called, pane.window()))->showWindow();
    });
    return button;
}

static NewTaskRequest newTaskOfCompany(const ObjectPtr &record)
{
    return {.createWithCompany = std::static_pointer_cast<EntityCompany>(record)};
}

DetailContactViewController::DetailContactViewController(std::unique_ptr<FormModel> form, FormView *formView,
                                                         QWidget *parent)
    : LinkedTasksPane(
          name, std::move(form), formView,
          {.tasks = [](const ManagedObject &one) { return static_cast<const EntityContacts &>(one).task(); },
           .newTask = newTaskOfContact,
           .tellsWaiting = true,
           .above = makeStrips},
          parent)
{
    addToHeader(makeCallButton(*this));
}

CompanyDetailViewController::CompanyDetailViewController(std::unique_ptr<FormModel> form, FormView *formView,
                                                         QWidget *parent)
    : LinkedTasksPane(
          name, std::move(form), formView,
          {.tasks = [](const ManagedObject &one) { return static_cast<const EntityCompany &>(one).task(); },
           .newTask = newTaskOfCompany,
           .above = makeStripOfCompany},
          parent)
{
    addToHeader(makeCallButton(*this));
}
