#pragma once

#include <QByteArray>

#include <memory>

#include <unicode/basictz.h>

/// The rules of a time zone for ICU, made from the system's zone data: ICU's own data may be years older.
/// Right until 2077; after that the last offset stays. An unknown name is UTC. Built once for each name and
/// shared; any thread.
std::shared_ptr<const icu::BasicTimeZone> sharedZoneRules(const QByteArray &identifier);
