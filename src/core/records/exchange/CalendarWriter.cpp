#include "records/exchange/CalendarWriter.h"

#include "calendarsync/CalendarEvent.h"
#include "eventkit/IcalDocument.h"
#include "eventkit/IcalTime.h"
#include "eventkit/VTimeZone.h"
#include "records/exchange/PersonName.h"

using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray endOfCalendar = QByteArrayLiteral("END:VCALENDAR\r\n");
/// Zones are described from then on.
constexpr double firstMoment = 0;

QByteArray textOfComponent(const IcalComponent &component)
{
    QByteArray text;
    component.writeTo(text);
    return text;
}

} // namespace

CalendarWriter::CalendarWriter()
    : held(CalendarEvent::hasAccesToCalendar() ? CalendarEvent::eventStore().holdContents() : nullptr)
{}

CalendarWriter::~CalendarWriter() = default;

QByteArray CalendarWriter::head()
{
    QByteArray text = IcalDocument::create().text();
    text.chop(endOfCalendar.size());
    return text;
}

QByteArray CalendarWriter::end()
{
    return endOfCalendar;
}

QByteArray CalendarWriter::text(const ManagedObject &record)
{
    const std::string_view entity = record.entity().name();
    if (entity == EntityTask::entityName)
        return textOf(static_cast<const EntityTask &>(record), {});
    if (entity == EntityProject::entityName)
        return textOf(static_cast<const EntityProject &>(record));
    return entity == EntityNote::entityName ? textOf(static_cast<const EntityNote &>(record)) : QByteArray();
}

/// Each zone is described before the first component that names it.
QByteArray CalendarWriter::zonesOf(const TaskObject &object)
{
    QByteArray text;
    const auto describe = [&](const QByteArray &name) {
        if (name.isEmpty() || writtenZones.contains(name))
            return;
        writtenZones.insert(name);
        if (const auto zone = timeZoneComponent(name, name, Date::fromUnixSeconds(firstMoment), "\r\n")) {
            text += textOfComponent(*zone);
            return;
        }
        if (object.source)
            for (const IcalComponent *child : object.source->document().calendar().children())
                if (child->name() == "VTIMEZONE" && child->value("TZID") == name)
                    text += textOfComponent(*child);
    };
    for (const IcalComponent &component : object.components)
        for (const ContentLine *line : component.allLines())
            describe(line->parameter("TZID"));
    return text;
}

QByteArray CalendarWriter::textOf(const EntityTask &task, const QString &project)
{
    const QString uid = TaskComponents::uidOf(task);
    if (writtenObjects.contains(uid))
        return {};
    writtenObjects.insert(uid);
    TaskObject object = TaskComponents::of(task);
    QByteArray text = zonesOf(object);
    for (IcalComponent &component : object.components) {
        TaskComponents::putText(component, "RELATED-TO", project);
        text += textOfComponent(component);
    }
    return text;
}

QByteArray CalendarWriter::textOf(const EntityProject &project)
{
    IcalComponent component("VTODO", "\r\n");
    const QString uid = project.identifier();
    TaskComponents::putIdentity(component, uid, project.creationDate(), {});
    const auto addDay = [&](const QByteArray &name, OptionalDate date) {
        if (date)
            component.addLine(IcalTime::of(*date, {.form = IcalTime::Form::Date}).line(name, "\r\n"));
    };
    addDay("DTSTART", project.startDate());
    addDay("DUE", project.dueDate());
    TaskComponents::putText(component, "SUMMARY", project.title());
    TaskComponents::putText(component, "DESCRIPTION", project.details());
    TaskComponents::putProgress(component, project.status(), project.priority(), project.expirationDate());
    component.setValue("X-MORVANE-KIND", "PROJECT");
    if (const CategoryPtr category = project.category())
        TaskComponents::putCategories(component, category->title(), {});
    for (const ContactPtr &person : project.delegateToUser()) {
        if (!person)
            continue;
        TaskComponents::putText(component, "CONTACT", person->fullName());
        TaskComponents::putText(component, "X-MORVANE-PERSON", personname::written(*person));
    }
    QByteArray text = textOfComponent(component);
    for (const TaskPtr &task : project.task())
        if (task)
            text += textOf(*task, uid);
    return text;
}

QByteArray CalendarWriter::textOf(const EntityNote &note)
{
    IcalComponent component("VJOURNAL", "\r\n");
    TaskComponents::putIdentity(component, note.identifier(), note.creationDate(), {});
    TaskComponents::putText(component, "SUMMARY", note.title());
    TaskComponents::putText(component, "DESCRIPTION", note.detail());
    if (const ContactPtr person = note.contact()) {
        TaskComponents::putText(component, "CONTACT", person->fullName());
        TaskComponents::putText(component, "X-MORVANE-PERSON", personname::written(*person));
    }
    if (const CompanyPtr company = note.company())
        TaskComponents::putText(component, "X-MORVANE-COMPANY", company->title());
    return textOfComponent(component);
}
