#pragma once

#include "eventkit/CalendarError.h"

#include <QByteArray>
#include <QString>

#include <libecal/libecal.h>
#include <libedataserver/libedataserver.h>

#include <memory>
#include <vector>

// What all that talks to the calendar daemon needs of GLib. Included by the sources and private headers of
// the daemon's backend only.

struct GlibUnref
{
    void operator()(void *object) const { g_object_unref(object); }
};
struct GlibFree
{
    void operator()(void *memory) const { g_free(memory); }
};
struct GlibVariantUnref
{
    void operator()(GVariant *variant) const { g_variant_unref(variant); }
};

/// Holds a reference that was given to us.
template <typename T>
using GlibObject = std::unique_ptr<T, GlibUnref>;
using GlibText = std::unique_ptr<char, GlibFree>;
using GlibVariant = std::unique_ptr<GVariant, GlibVariantUnref>;

/// A further reference to an object that somebody else holds.
template <typename T>
GlibObject<T> shared(T *object)
{
    if (object)
        g_object_ref(object);
    return GlibObject<T>(object);
}

/// An object as one of its base or derived types, which the caller knows.
template <typename T, typename From>
T *glibCast(From *object)
{
    return reinterpret_cast<T *>(object);
}

template <typename Function>
gulong connectSignal(gpointer object, const char *signal, Function *function, gpointer receiver)
{
    return g_signal_connect_data(object, signal, reinterpret_cast<GCallback>(function), receiver, nullptr,
                                 GConnectFlags(0));
}
void disconnectSignals(gpointer object, gpointer receiver);

/// Why a call has failed.
class GlibFailure
{
public:
    GlibFailure() = default;
    ~GlibFailure() { g_clear_error(&error); }
    GlibFailure(const GlibFailure &) = delete;
    GlibFailure &operator=(const GlibFailure &) = delete;

    /// For the call; forgets what was before.
    GError **out();
    bool is(GQuark domain, int code) const;
    /// Whether the daemon has died or the connection to it is broken, so that another connection may help.
    bool isLostConnection() const;
    /// The error of the calendar store. `action` is the beginning of the sentence: "Cannot read the
    /// calendar".
    Error told(const QString &action) const;

private:
    CalendarError::Code code() const;

    GError *error = nullptr;
};

/// A list of references; takes them over with the list.
template <typename T>
std::vector<GlibObject<T>> taken(GSList *list)
{
    std::vector<GlibObject<T>> objects;
    for (const GSList *entry = list; entry; entry = entry->next)
        objects.emplace_back(static_cast<T *>(entry->data));
    g_slist_free(list);
    return objects;
}
