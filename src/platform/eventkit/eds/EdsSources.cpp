#include "eventkit/eds/EdsSources.h"

#include "eventkit/ColorText.h"

namespace {

bool has(ESource *source, const char *extension)
{
    return e_source_has_extension(source, extension);
}

/// Asked only for extensions that are there, since it would make them.
template <typename Extension>
Extension *extensionOf(ESource *source, const char *name)
{
    return static_cast<Extension *>(e_source_get_extension(source, name));
}

bool isExchange(const QByteArray &backend)
{
    return backend == "ews" || backend == "mapi" || backend == "microsoft365" || backend == "exchange";
}

QByteArray backendOf(ESource *source)
{
    ESourceBackend *extension = edsCalendarExtension(source);
    return extension ? e_source_backend_get_backend_name(extension) : nullptr;
}

EKCalendarType typeOf(const QByteArray &backend)
{
    if (backend == "local")
        return EKCalendarType::Local;
    if (backend == "contacts")
        return EKCalendarType::Birthday;
    if (backend == "webcal" || backend == "weather")
        return EKCalendarType::Subscription;
    return isExchange(backend) ? EKCalendarType::Exchange : EKCalendarType::CalDAV;
}

QString textOf(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

bool edsIsTaskList(ESource *source)
{
    return !has(source, E_SOURCE_EXTENSION_CALENDAR) && has(source, E_SOURCE_EXTENSION_TASK_LIST);
}

ESourceBackend *edsCalendarExtension(ESource *source)
{
    if (has(source, E_SOURCE_EXTENSION_CALENDAR))
        return extensionOf<ESourceBackend>(source, E_SOURCE_EXTENSION_CALENDAR);
    if (has(source, E_SOURCE_EXTENSION_TASK_LIST))
        return extensionOf<ESourceBackend>(source, E_SOURCE_EXTENSION_TASK_LIST);
    return nullptr;
}

GlibObject<ESource> edsAccountOf(ESourceRegistry *registry, ESource *source)
{
    GlibObject<ESource> account(
        e_source_registry_find_extension(registry, source, E_SOURCE_EXTENSION_COLLECTION));
    const char *parent = e_source_get_parent(source);
    if (!account && parent)
        account.reset(e_source_registry_ref_source(registry, parent));
    return account ? std::move(account) : shared(source);
}

EKSource edsSourceFrom(ESource *account)
{
    const QString identifier = textOf(e_source_get_uid(account));
    QByteArray backend;
    if (has(account, E_SOURCE_EXTENSION_COLLECTION))
        backend = e_source_backend_get_backend_name(
            extensionOf<ESourceBackend>(account, E_SOURCE_EXTENSION_COLLECTION));
    const bool isAccount = !backend.isEmpty() || identifier == QStringLiteral("caldav-stub") ||
                           identifier == QStringLiteral("google-stub");
    const EKSourceType type = isExchange(backend) ? EKSourceType::Exchange
                              : isAccount         ? EKSourceType::CalDAV
                                                  : EKSourceType::Local;
    return {textOf(e_source_get_display_name(account)), type, identifier};
}

EKCalendar edsCalendarFrom(ESourceRegistry *registry, ESource *source)
{
    EKCalendar calendar;
    calendar.title = textOf(e_source_get_display_name(source));
    calendar.calendarIdentifier = textOf(e_source_get_uid(source));
    calendar.allowsContentModifications = false;
    calendar.isImmutable = !e_source_get_writable(source) && !e_source_get_removable(source) &&
                           !e_source_get_remote_deletable(source);
    calendar.source = edsSourceFrom(edsAccountOf(registry, source).get());
    if (ESourceBackend *extension = edsCalendarExtension(source))
        calendar.color =
            colorFromText(textOf(e_source_selectable_get_color(glibCast<ESourceSelectable>(extension))));
    calendar.type = typeOf(backendOf(source));
    calendar.allowedEntityTypes = {edsIsTaskList(source) ? EKEntityType::Reminder : EKEntityType::Event};
    return calendar;
}

QByteArray edsFingerprint(ESource *source)
{
    QByteArrayList parts = {e_source_get_display_name(source), e_source_get_parent(source),
                            backendOf(source)};
    if (ESourceBackend *extension = edsCalendarExtension(source))
        parts.append(e_source_selectable_get_color(glibCast<ESourceSelectable>(extension)));
    return parts.join('\n');
}

QStringList edsMailAddresses(ESourceRegistry *registry)
{
    QStringList addresses;
    GList *sources = e_source_registry_list_enabled(registry, E_SOURCE_EXTENSION_MAIL_IDENTITY);
    for (const GList *entry = sources; entry; entry = entry->next) {
        auto *identity = extensionOf<ESourceMailIdentity>(static_cast<ESource *>(entry->data),
                                                          E_SOURCE_EXTENSION_MAIL_IDENTITY);
        const QString address = textOf(e_source_mail_identity_get_address(identity)).trimmed();
        if (!address.isEmpty() && !addresses.contains(address))
            addresses.append(address);
    }
    g_list_free_full(sources, g_object_unref);
    return addresses;
}
