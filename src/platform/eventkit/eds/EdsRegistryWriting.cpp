#include "eventkit/eds/EdsRegistry.h"

#include "eventkit/ColorText.h"
#include "eventkit/eds/EdsSources.h"

namespace {

QString actionOn(const QString &verb, const QString &title)
{
    return QStringLiteral("Cannot %1 the calendar \"%2\"").arg(verb, title);
}

Error refused(const QString &action)
{
    return CalendarError::make(CalendarError::ReadOnly,
                               action + QStringLiteral(": its account does not allow that."));
}

void describe(ESource *source, const EKCalendar &calendar)
{
    e_source_set_display_name(source, calendar.title.toUtf8().constData());
    if (calendar.color)
        e_source_selectable_set_color(glibCast<ESourceSelectable>(edsCalendarExtension(source)),
                                      textOfColor(*calendar.color).toUtf8().constData());
}

} // namespace

/// What the program has done itself is no news.
void EdsRegistry::forgive(ESource *source)
{
    const QString identifier = QString::fromUtf8(e_source_get_uid(source));
    present.insert(identifier);
    known.insert(identifier, edsFingerprint(source));
}

/// Calendars are made on this machine only. A server tells of one that is made there later, and under an
/// identifier that nobody knows before.
Result<QString> EdsRegistry::create(const EKCalendar &calendar)
{
    const QString action = actionOn(QStringLiteral("make"), calendar.title);
    const QByteArray parent = calendar.source.sourceIdentifier.toUtf8();
    const GlibObject<ESource> account(e_source_registry_ref_source(registry.get(), parent.constData()));
    if (!account)
        return CalendarError::make(CalendarError::NotFound,
                                   action + QStringLiteral(": its account has gone."));
    if (parent != "local-stub")
        return refused(action);
    GlibFailure failure;
    const GlibObject<ESource> made(e_source_new(nullptr, nullptr, failure.out()));
    if (!made)
        return failure.told(action);
    e_source_set_parent(made.get(), parent.constData());
    const bool holdsEvents = calendar.allowedEntityTypes.contains(EKEntityType::Event);
    auto *extension = static_cast<ESourceBackend *>(e_source_get_extension(
        made.get(), holdsEvents ? E_SOURCE_EXTENSION_CALENDAR : E_SOURCE_EXTENSION_TASK_LIST));
    e_source_backend_set_backend_name(extension, "local");
    describe(made.get(), calendar);
    const EdsTimeLimit limit(EdsTimeLimit::forWriting);
    const auto commit = [&] {
        return e_source_registry_commit_source_sync(registry.get(), made.get(), limit.cancellable(),
                                                    failure.out());
    };
    if (!limit.run(commit))
        return failure.told(action);
    forgive(made.get());
    return QString::fromUtf8(e_source_get_uid(made.get()));
}

OptionalError EdsRegistry::change(const EKCalendar &calendar)
{
    const QString action = actionOn(QStringLiteral("change"), calendar.title);
    const auto source = find(calendar.calendarIdentifier);
    if (!source)
        return CalendarError::make(CalendarError::NotFound, action + QStringLiteral(": it has gone."));
    if (!e_source_get_writable(source.get()))
        return refused(action);
    describe(source.get(), calendar);
    GlibFailure failure;
    const EdsTimeLimit limit(EdsTimeLimit::forWriting);
    if (!limit.run([&] { return e_source_write_sync(source.get(), limit.cancellable(), failure.out()); }))
        return failure.told(action);
    forgive(source.get());
    return std::nullopt;
}

OptionalError EdsRegistry::remove(const QString &identifier)
{
    const auto source = find(identifier);
    if (!source)
        return std::nullopt;
    const QString action =
        actionOn(QStringLiteral("remove"), QString::fromUtf8(e_source_get_display_name(source.get())));
    GlibFailure failure;
    const EdsTimeLimit limit(EdsTimeLimit::forWriting);
    const bool isRemote = e_source_get_remote_deletable(source.get());
    if (!isRemote && !e_source_get_removable(source.get()))
        return refused(action);
    const auto take = [&] {
        return isRemote ? e_source_remote_delete_sync(source.get(), limit.cancellable(), failure.out())
                        : e_source_remove_sync(source.get(), limit.cancellable(), failure.out());
    };
    if (!limit.run(take))
        return failure.told(action);
    present.remove(identifier);
    known.remove(identifier);
    return std::nullopt;
}
