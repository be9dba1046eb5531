#include "eventkit/eds/EdsClient.h"

namespace {

/// What has changed on a server since it was read is not overwritten.
constexpr ECalOperationFlags operationFlags = E_CAL_OPERATION_FLAG_CONFLICT_FAIL;

/// Components as the library takes them, for the length of a call.
class ComponentList
{
public:
    explicit ComponentList(const EdsComponents &components)
    {
        for (const EdsComponent &component : components)
            list = g_slist_append(list, component.component().release());
    }
    ~ComponentList() { g_slist_free_full(list, g_object_unref); }
    ComponentList(const ComponentList &) = delete;
    ComponentList &operator=(const ComponentList &) = delete;

    GSList *list = nullptr;
};

} // namespace

/// Once more with a new connection where the daemon has died since the last call.
OptionalError EdsClient::read(const Call &call)
{
    for (const bool mayConnectAgain : {true, false}) {
        const bool wasConnected = isConnected();
        if (patience.isExhausted())
            return EdsPatience::error();
        if (auto error = connect())
            return error;
        GlibFailure failure;
        const EdsTimeLimit limit(EdsTimeLimit::forReading);
        if (limit.run([&] { return call(client.get(), limit.cancellable(), failure.out()); }))
            return std::nullopt;
        if (limit.isExceeded())
            patience.exhaust();
        if (!failure.isLostConnection() || limit.isExceeded())
            return failure.told(sentence(QStringLiteral("read")));
        disconnect();
        if (!wasConnected || !mayConnectAgain)
            return failure.told(sentence(QStringLiteral("read")));
    }
    return EdsPatience::error();
}

/// Not tried again: it may have been done before the connection was lost.
OptionalError EdsClient::write(const Call &call)
{
    if (patience.isExhausted())
        return EdsPatience::error();
    if (auto error = connect())
        return error;
    GlibFailure failure;
    const EdsTimeLimit limit(EdsTimeLimit::forWriting);
    if (limit.run([&] { return call(client.get(), limit.cancellable(), failure.out()); }))
        return std::nullopt;
    if (failure.isLostConnection())
        disconnect();
    return failure.told(sentence(QStringLiteral("change")));
}

Result<EdsComponents> EdsClient::all()
{
    EdsComponents found;
    const auto error = read([&](auto *connected, auto *limit, auto **reason) {
        GSList *list = nullptr;
        if (!e_cal_client_get_object_list_sync(connected, "#t", &list, limit, reason))
            return false;
        for (const auto &component : taken<ICalComponent>(list))
            found.push_back(EdsComponent::of(component.get()));
        return true;
    });
    return error ? Result<EdsComponents>(*error) : found;
}

Result<EdsComponents> EdsClient::ofUid(const QByteArray &uid)
{
    EdsComponents found;
    const auto error = read([&](auto *connected, auto *limit, auto **reason) {
        GSList *list = nullptr;
        if (!e_cal_client_get_objects_for_uid_sync(connected, uid.constData(), &list, limit, reason))
            return false;
        for (const auto &component : taken<ECalComponent>(list))
            found.push_back(EdsComponent::of(e_cal_component_get_icalcomponent(component.get())));
        return true;
    });
    if (error && !CalendarError::is(error, CalendarError::NotFound))
        return *error;
    return found;
}

Result<QByteArray> EdsClient::zone(const QByteArray &tzid)
{
    QByteArray text;
    const auto error = read([&](auto *connected, auto *limit, auto **reason) {
        ICalTimezone *zone = nullptr;
        if (!e_cal_client_get_timezone_sync(connected, tzid.constData(), &zone, limit, reason) || !zone)
            return false;
        const GlibObject<ICalComponent> component(i_cal_timezone_get_component(zone));
        const GlibText written(component ? i_cal_component_as_ical_string(component.get()) : nullptr);
        text = written.get();
        return true;
    });
    const bool isMissing =
        CalendarError::is(error, CalendarError::NotFound) || CalendarError::is(error, CalendarError::Invalid);
    return error && !isMissing ? Result<QByteArray>(*error) : text;
}

OptionalError EdsClient::addZone(const QByteArray &text)
{
    return write([&](auto *connected, auto *limit, auto **reason) {
        ICalComponent *component = i_cal_component_new_from_string(text.constData());
        const GlibObject<ICalTimezone> zone(i_cal_timezone_new());
        // The zone takes the component over.
        if (!component || !i_cal_timezone_set_component(zone.get(), component))
            return true;
        g_object_unref(component);
        return e_cal_client_add_timezone_sync(connected, zone.get(), limit, reason) == TRUE;
    });
}

Result<QByteArray> EdsClient::create(const EdsComponent &component)
{
    QByteArray uid;
    const auto error = write([&](auto *connected, auto *limit, auto **reason) {
        char *made = nullptr;
        const bool isDone = e_cal_client_create_object_sync(connected, component.component().get(),
                                                            operationFlags, &made, limit, reason);
        const GlibText text(made);
        uid = text ? QByteArray(text.get()) : component.uid;
        return isDone;
    });
    return error ? Result<QByteArray>(*error) : uid;
}

OptionalError EdsClient::modify(const EdsComponents &components, ECalObjModType type)
{
    return write([&](auto *connected, auto *limit, auto **reason) {
        const ComponentList list(components);
        return e_cal_client_modify_objects_sync(connected, list.list, type, operationFlags, limit, reason) ==
               TRUE;
    });
}

OptionalError EdsClient::replaceMaster(const EdsComponent &component)
{
    return modify({component}, E_CAL_OBJ_MOD_ALL);
}

OptionalError EdsClient::replaceDetached(const EdsComponents &components)
{
    return components.empty() ? OptionalError() : modify(components, E_CAL_OBJ_MOD_THIS);
}

bool EdsClient::canRemoveDetached() const
{
    return client && e_client_check_capability(glibCast<EClient>(client.get()),
                                               E_CAL_STATIC_CAPABILITY_REMOVE_ONLY_THIS);
}

OptionalError EdsClient::removeDetached(const EdsComponent &component)
{
    return write([&](auto *connected, auto *limit, auto **reason) {
        return e_cal_client_remove_object_sync(connected, component.uid.constData(),
                                               component.recurrenceId.constData(), E_CAL_OBJ_MOD_ONLY_THIS,
                                               operationFlags, limit, reason) == TRUE;
    });
}

OptionalError EdsClient::removeAll(const QByteArray &uid)
{
    return write([&](auto *connected, auto *limit, auto **reason) {
        return e_cal_client_remove_object_sync(connected, uid.constData(), nullptr, E_CAL_OBJ_MOD_ALL,
                                               operationFlags, limit, reason) == TRUE;
    });
}
