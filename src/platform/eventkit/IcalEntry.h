#pragma once

#include "eventkit/IcalComponent.h"

#include <variant>

/// What a component is made of: a property or an inner component.
struct IcalEntry
{
    std::variant<ContentLine, IcalComponent> content;

    const ContentLine *line() const { return std::get_if<ContentLine>(&content); }
    const IcalComponent *child() const { return std::get_if<IcalComponent>(&content); }
    IcalComponent *child() { return std::get_if<IcalComponent>(&content); }
    bool isLineOf(const QByteArray &name) const { return line() && line()->name() == name; }
};
