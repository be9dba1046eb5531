#include "eventkit/eds/EdsComponent.h"

#include <QCryptographicHash>

#include <algorithm>

namespace {

/// The lines of a component in alphabetical order, without those that change by themselves.
QByteArray fingerprintOf(const QByteArray &text)
{
    QByteArrayList lines = text.split('\n');
    lines.removeIf([](const QByteArray &line) {
        return line.startsWith("X-EVOLUTION-CALDAV-ETAG") || line.startsWith("X-EVOLUTION-ALARM-UID");
    });
    std::sort(lines.begin(), lines.end());
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const QByteArray &line : lines)
        hash.addData(line);
    return hash.result();
}

void addZone(ICalParameter *parameter, gpointer zones)
{
    auto &found = *static_cast<QByteArrayList *>(zones);
    const QByteArray zone = i_cal_parameter_get_tzid(parameter);
    if (!zone.isEmpty() && !found.contains(zone))
        found.append(zone);
}

QByteArray recurrenceIdOf(ICalComponent *component)
{
    const GlibObject<ICalProperty> property(
        i_cal_component_get_first_property(component, I_CAL_RECURRENCEID_PROPERTY));
    if (!property)
        return {};
    const GlibText value(i_cal_property_get_value_as_string(property.get()));
    return value.get();
}

} // namespace

EdsComponent EdsComponent::of(ICalComponent *component)
{
    EdsComponent read;
    read.uid = i_cal_component_get_uid(component);
    read.recurrenceId = recurrenceIdOf(component);
    const GlibText text(i_cal_component_as_ical_string(component));
    read.text = text.get();
    i_cal_component_foreach_tzid(component, addZone, &read.zones);
    read.fingerprint = fingerprintOf(read.text);
    return read;
}

std::optional<EdsComponent> EdsComponent::fromText(const QByteArray &text)
{
    const GlibObject<ICalComponent> component(i_cal_component_new_from_string(text.constData()));
    if (!component)
        return std::nullopt;
    i_cal_component_strip_errors(component.get());
    return of(component.get());
}

GlibObject<ICalComponent> EdsComponent::component() const
{
    return GlibObject<ICalComponent>(i_cal_component_new_from_string(text.constData()));
}
