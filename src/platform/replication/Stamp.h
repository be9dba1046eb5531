#pragma once

#include <QByteArray>

#include <compare>
#include <map>
#include <set>

namespace replication {

/// A device by its random number, as 16 hexadecimal digits.
using DeviceId = QByteArray;

/// When a value was written: a hybrid logical clock (milliseconds of the wall clock shifted left by 16 bits,
/// or more, so that it grows from each change to the next one that has seen it), and who wrote it. The
/// greater one wins.
struct Stamp
{
    qint64 time = 0;
    DeviceId device = {};
    auto operator<=>(const Stamp &other) const
    {
        const auto byTime = time <=> other.time;
        return byTime != 0 ? byTime : device.compare(other.device) <=> 0;
    }
    bool operator==(const Stamp &other) const = default;
};

/// One save of one device.
struct Dot
{
    DeviceId device;
    qint64 number = 0;
    auto operator<=>(const Dot &other) const
    {
        const auto byDevice = device.compare(other.device) <=> 0;
        return byDevice != 0 ? byDevice : number <=> other.number;
    }
    bool operator==(const Dot &other) const = default;
};
using Dots = std::set<Dot>;

/// How far the saves of each device are known: all up to that number.
class VersionVector
{
public:
    qint64 of(const DeviceId &device) const;
    /// Knows from now on the saves of a device up to a number.
    void add(const DeviceId &device, qint64 number);
    void add(const VersionVector &other);
    /// Knows the saves of a device up to a number at most.
    void lower(const DeviceId &device, qint64 number);
    bool covers(const VersionVector &other) const;
    bool isEmpty() const { return numbers.empty(); }
    const std::map<DeviceId, qint64> &entries() const { return numbers; }
    bool operator==(const VersionVector &) const = default;

    /// "device:number device:number", in the order of the devices.
    QByteArray text() const;
    static VersionVector fromText(const QByteArray &text);

private:
    std::map<DeviceId, qint64> numbers;
};

/// The same form for single saves.
QByteArray textOf(const Dots &dots);
Dots dotsOfText(const QByteArray &text);

} // namespace replication
