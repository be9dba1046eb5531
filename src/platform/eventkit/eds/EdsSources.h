#pragma once

#include "eventkit/EKCalendar.h"
#include "eventkit/eds/EdsGlib.h"

// How sources of the daemon are shown as accounts and calendars.

/// The account to which a calendar belongs: a collection, or the daemon's group of the same kind.
GlibObject<ESource> edsAccountOf(ESourceRegistry *registry, ESource *source);
EKSource edsSourceFrom(ESource *account);
/// All but what only a connection to the calendar tells: whether it may be written to, and its owner.
EKCalendar edsCalendarFrom(ESourceRegistry *registry, ESource *source);
/// What others may change of a source, as one text.
QByteArray edsFingerprint(ESource *source);
/// Under which mail accounts of the desktop people are invited.
QStringList edsMailAddresses(ESourceRegistry *registry);

/// The extension that makes a source a calendar or a task list; null for neither.
ESourceBackend *edsCalendarExtension(ESource *source);
bool edsIsTaskList(ESource *source);
