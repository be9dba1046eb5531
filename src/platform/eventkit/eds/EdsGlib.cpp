#include "eventkit/eds/EdsGlib.h"

void disconnectSignals(gpointer object, gpointer receiver)
{
    g_signal_handlers_disconnect_matched(object, G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr, receiver);
}

GError **GlibFailure::out()
{
    g_clear_error(&error);
    return &error;
}

bool GlibFailure::is(GQuark domain, int code) const
{
    return error && g_error_matches(error, domain, code);
}

bool GlibFailure::isLostConnection() const
{
    if (!error)
        return false;
    const bool isBroken = is(G_IO_ERROR, G_IO_ERROR_FAILED) || is(G_IO_ERROR, G_IO_ERROR_CLOSED) ||
                          is(G_IO_ERROR, G_IO_ERROR_BROKEN_PIPE) ||
                          is(E_CLIENT_ERROR, E_CLIENT_ERROR_DBUS_ERROR) ||
                          is(E_CLIENT_ERROR, E_CLIENT_ERROR_NOT_OPENED);
    return isBroken || error->domain == G_DBUS_ERROR;
}

CalendarError::Code GlibFailure::code() const
{
    if (is(E_CAL_CLIENT_ERROR, E_CAL_CLIENT_ERROR_NO_SUCH_CALENDAR) ||
        is(E_CAL_CLIENT_ERROR, E_CAL_CLIENT_ERROR_OBJECT_NOT_FOUND))
        return CalendarError::NotFound;
    if (is(E_CAL_CLIENT_ERROR, E_CAL_CLIENT_ERROR_OBJECT_ID_ALREADY_EXISTS) ||
        is(E_CLIENT_ERROR, E_CLIENT_ERROR_OUT_OF_SYNC))
        return CalendarError::Conflict;
    if (is(E_CAL_CLIENT_ERROR, E_CAL_CLIENT_ERROR_INVALID_OBJECT))
        return CalendarError::Invalid;
    if (is(E_CLIENT_ERROR, E_CLIENT_ERROR_PERMISSION_DENIED) || is(G_IO_ERROR, G_IO_ERROR_PERMISSION_DENIED))
        return CalendarError::ReadOnly;
    return CalendarError::Storage;
}

Error GlibFailure::told(const QString &action) const
{
    const bool isTimeOut = is(G_IO_ERROR, G_IO_ERROR_CANCELLED) || is(G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
                           is(E_CLIENT_ERROR, E_CLIENT_ERROR_CANCELLED);
    const QString reason = isTimeOut ? QStringLiteral("the calendar service does not answer")
                           : error   ? QString::fromUtf8(error->message)
                                     : QStringLiteral("the calendar service gives no reason");
    return CalendarError::make(code(), QStringLiteral("%1: %2").arg(action, reason));
}
