#include "foundation/Localization.h"
#include "records/Categories.h"
#include "records/Functional.h"
#include "records/ProjectManager.h"
#include "records/TaskFormChoices.h"
#include "shell/tasks/LocationPopup.h"
#include "shell/tasks/RepeatControl.h"
#include "shell/tasks/TaskFormView.h"
#include "store/entities/EntityCategory.h"
#include "widgets/CategoryIcon.h"
#include "widgets/PopUpButton.h"
#include "widgets/Theme.h"

#include <QAbstractItemView>
#include <QTimer>

// The pop-ups of a task's form.

using namespace Qt::Literals::StringLiterals;

/// Milliseconds between two looks whether a pop-up was closed.
constexpr int lookAgain = 200;

namespace {

QIcon iconOf(const EKColor &color)
{
    return CategoryIcon::circle(QColor::fromRgbF(
        static_cast<float>(color.red), static_cast<float>(color.green), static_cast<float>(color.blue)));
}

} // namespace

/// A pop-up of records with "None" above them.
template <typename Pointer, typename Choose>
PopUpButton *TaskFormView::makeChoice(const QString &name, std::function<std::vector<Pointer>()> choicesNow,
                                      Pointer (*current)(const MVTask &), QString (*titleOf)(const Pointer &),
                                      Choose choose)
{
    auto *popUp = new PopUpButton(name);
    const auto choices = std::make_shared<std::vector<Pointer>>();
    keepFilled(*popUp, Pointer::element_type::entityName, [=] {
        *choices = choicesNow();
        popUp->addItem(localized(u"None"_s));
        for (const Pointer &choice : *choices)
            popUp->addItem(titleOf(choice));
    });
    connect(popUp, &QComboBox::activated, this, [this, choices, choose](int index) {
        choose(state, index == 0 ? nullptr : (*choices)[static_cast<std::size_t>(index - 1)]);
    });
    syncs.push_back([this, popUp, choices, current] {
        const Pointer chosen = current(state.currentTask());
        const auto found = std::ranges::find(*choices, chosen);
        popUp->setCurrentIndex(!chosen                   ? 0
                               : found == choices->end() ? -1
                                                         : static_cast<int>(found - choices->begin()) + 1);
    });
    return popUp;
}

/// Fills a pop-up, and again whenever the records of an entity change.
void TaskFormView::keepFilled(PopUpButton &popUp, std::string_view entity, std::function<void()> fill)
{
    fill();
    fillings.push_back({&popUp, entity, std::move(fill), false});
}

void TaskFormView::storeChanged(const StoreChanges &changes)
{
    for (Filling &filling : fillings) {
        const auto isOffered = [&filling](const ObjectPtr &object) {
            return object->entity().name() == filling.entity;
        };
        const auto isRenamed = [&](const StoreChanges::Update &one) {
            return isOffered(one.object) && one.columns.any();
        };
        if (changes.isUnknown || std::ranges::any_of(changes.inserted, isOffered) ||
            std::ranges::any_of(changes.deleted, isOffered) ||
            std::ranges::any_of(changes.updated, isRenamed))
            filling.isDue = true;
    }
    fillDue();
}

/// One that is open waits until the user has chosen.
void TaskFormView::fillDue()
{
    bool isAnyFilled = false;
    for (Filling &filling : fillings) {
        if (!filling.isDue)
            continue;
        if (filling.popUp->view()->isVisible()) {
            QTimer::singleShot(lookAgain, this, &TaskFormView::fillDue);
            continue;
        }
        filling.isDue = false;
        isAnyFilled = true;
        filling.popUp->clear();
        filling.fill();
    }
    if (isAnyFilled)
        refresh();
}

QWidget *TaskFormView::makeCalendar()
{
    auto *popUp = new PopUpButton(u"popUpButtonCalendar"_s);
    popUp->addHeading(TaskFormChoices::calendarsHeader(state.hasCalendarAccess()));
    popUp->setToolTip(popUp->itemText(0));
    if (state.hasCalendarAccess()) {
        for (const CalendarChooserRow &row : TaskFormChoices::calendars()) {
            if (const auto *heading = std::get_if<QString>(&row)) {
                popUp->addHeading(*heading);
                continue;
            }
            const auto &calendar = std::get<EKCalendar>(row);
            popUp->addItem(iconOf(CalendarEvent::getColorOfCalendar(calendar)),
                           CalendarEvent::localizedTitleCalendar(calendar),
                           CalendarEvent::identifierOfCalendar(calendar));
        }
    }
    popUp->setEnabled(popUp->count() > 1);
    connect(popUp, &QComboBox::activated, this,
            [this, popUp] { state.setCalendar(popUp->currentData().toString()); });
    syncs.push_back([this, popUp] {
        const QString &chosen = state.currentTask().typeCalendarID;
        popUp->setCurrentIndex(chosen.isEmpty() ? 0 : std::max(0, popUp->findData(chosen)));
    });
    return popUp;
}

QWidget *TaskFormView::makeType()
{
    auto *popUp = new PopUpButton(u"popUpButtonType"_s);
    for (const TaskType type : state.types())
        popUp->addItem(Functional::typeStringFromType(type), static_cast<int>(type));
    connect(popUp, &QComboBox::textActivated, this, [this](const QString &word) { state.setType(word); });
    syncs.push_back([this, popUp] {
        const TaskType type = state.currentTask().type.value_or(TaskType::ToDo);
        popUp->setCurrentIndex(popUp->findData(static_cast<int>(type)));
    });
    return popUp;
}

QWidget *TaskFormView::makeCategory()
{
    auto *popUp = new PopUpButton(u"popUpButtonCategory"_s);
    const auto categories = std::make_shared<std::vector<CategoryPtr>>();
    keepFilled(*popUp, EntityCategory::entityName, [=] {
        *categories = TaskFormChoices::categories();
        for (const CategoryPtr &category : *categories) {
            if (category)
                popUp->addItem(CategoryIcon::of(*category), Categories::shownTitle(category));
            else
                popUp->addItem(localized(u"None"_s));
        }
    });
    connect(popUp, &QComboBox::activated, this, [this, categories](int index) {
        state.setCategory((*categories)[static_cast<std::size_t>(index)]);
    });
    syncs.push_back([this, popUp, categories] {
        const auto chosen = std::ranges::find(*categories, state.currentTask().category);
        popUp->setCurrentIndex(chosen == categories->end() ? 0
                                                           : static_cast<int>(chosen - categories->begin()));
    });
    return popUp;
}

QWidget *TaskFormView::makeStatus()
{
    auto *popUp = new PopUpButton(u"popUpButtonStatus"_s);
    for (const TaskStatus status : allTaskStatuses)
        popUp->addItem(Functional::statusStringFromType(status), static_cast<int>(status));
    connect(popUp, &QComboBox::activated, this,
            [this](int index) { state.setStatus(static_cast<TaskStatus>(index)); });
    syncs.push_back([this, popUp] {
        const TaskStatus status = state.currentTask().status.value_or(TaskStatus::Open);
        popUp->setCurrentIndex(static_cast<int>(status));
    });
    return popUp;
}

QWidget *TaskFormView::makePriority()
{
    auto *popUp = new PopUpButton(u"popUpButtonPriority"_s);
    for (const Priority priority : {Priority::None, Priority::High, Priority::Medium, Priority::Low})
        popUp->addItem(CategoryIcon::circle(Theme::priority(priority)),
                       Functional::priorityStringFromType(priority), static_cast<int>(priority));
    connect(popUp, &QComboBox::activated, this,
            [this, popUp] { state.setPriority(static_cast<Priority>(popUp->currentData().toInt())); });
    syncs.push_back([this, popUp] {
        const Priority priority = state.currentTask().priority.value_or(Priority::None);
        popUp->setCurrentIndex(popUp->findData(static_cast<int>(priority)));
    });
    return popUp;
}

QWidget *TaskFormView::makeDelegate()
{
    return makeChoice<ContactPtr>(
        u"popUpButtonDelegate"_s, TaskFormChoices::contacts,
        [](const MVTask &task) { return task.delegateToUser; },
        [](const ContactPtr &contact) { return contact->fullName(); },
        [](TaskFormState &form, const ContactPtr &contact) { form.setDelegate(contact); });
}

QWidget *TaskFormView::makeCompany()
{
    return makeChoice<CompanyPtr>(
        u"popUpButtonCompany"_s, TaskFormChoices::companies, [](const MVTask &task) { return task.company; },
        [](const CompanyPtr &company) { return company->title(); },
        [](TaskFormState &form, const CompanyPtr &company) { form.setCompany(company); });
}

QWidget *TaskFormView::makeProject()
{
    return makeChoice<ProjectPtr>(
        u"popUpButtonProject"_s, [this] { return TaskFormChoices::projects(state.currentTask().project); },
        [](const MVTask &task) { return task.project; },
        [](const ProjectPtr &project) { return ProjectManager::shownTitle(*project); },
        [](TaskFormState &form, const ProjectPtr &project) { form.setProject(project); });
}

QWidget *TaskFormView::makeRepeat()
{
    auto *popUp = new PopUpButton(u"popUpButtonRepeat"_s);
    auto *control = new RepeatControl(state, *popUp);
    syncs.push_back([control] { control->showValue(); });
    return popUp;
}

QWidget *TaskFormView::makeLocation()
{
    auto *popup = new LocationPopup;
    connect(popup, &LocationPopup::labelLocationClickButtonDone, this,
            [this](const LocationPtr &location) { state.setLocation(location); });
    syncs.push_back([this, popup] { popup->setLocation(state.currentTask().location); });
    return popup;
}
