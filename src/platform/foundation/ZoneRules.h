#pragma once

#include <QByteArray>

#include <memory>
#include <vector>

#include <unicode/basictz.h>

/// The rules of a time zone for ICU, made from the system's zone data: ICU's own data may be years older.
/// Right until 2077; after that the last offset stays. An unknown name is UTC. Built once for each name and
/// shared; any thread.
std::shared_ptr<const icu::BasicTimeZone> sharedZoneRules(const QByteArray &identifier);

/// From an instant on (seconds since 1970) a zone is so many seconds ahead of UTC.
struct ZoneChange
{
    qint64 unixSeconds = 0;
    int offset = 0;
};

/// Makes a zone that the system does not have known under a name that no zone of the system has. The changes
/// are in order. A name that is known already keeps its rules.
void registerZoneRules(const QByteArray &identifier, int firstOffset, const std::vector<ZoneChange> &changes);
