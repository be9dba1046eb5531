#include "eventkit/IcalComponent.h"

#include "eventkit/IcalEntry.h"
#include "eventkit/IcalText.h"

#include <algorithm>

IcalComponent::IcalComponent(const QByteArray &componentName, const QByteArray &lineEnd)
    : begin(ContentLine::make("BEGIN", componentName, lineEnd))
    , end(ContentLine::make("END", componentName, lineEnd))
    , upperName(componentName)
{}

IcalComponent::IcalComponent(const ContentLine &beginLine)
    : begin(beginLine)
    , end(QByteArray())
    , upperName(beginLine.value().trimmed().toUpper())
{}

IcalComponent::IcalComponent(const IcalComponent &) = default;
IcalComponent::IcalComponent(IcalComponent &&) noexcept = default;
IcalComponent &IcalComponent::operator=(const IcalComponent &) = default;
IcalComponent &IcalComponent::operator=(IcalComponent &&) noexcept = default;
IcalComponent::~IcalComponent() = default;

QByteArray IcalComponent::lineEnd() const
{
    return begin.lineEnd();
}

void IcalComponent::writeTo(QByteArray &text) const
{
    text += begin.raw();
    for (const IcalEntry &entry : entries) {
        if (const ContentLine *content = entry.line())
            text += content->raw();
        else
            entry.child()->writeTo(text);
    }
    text += end.raw();
}

const ContentLine *IcalComponent::line(const QByteArray &lineName) const
{
    for (const IcalEntry &entry : entries)
        if (entry.isLineOf(lineName))
            return entry.line();
    return nullptr;
}

std::vector<const ContentLine *> IcalComponent::lines(const QByteArray &lineName) const
{
    std::vector<const ContentLine *> found;
    for (const IcalEntry &entry : entries)
        if (entry.isLineOf(lineName))
            found.push_back(entry.line());
    return found;
}

std::vector<const ContentLine *> IcalComponent::allLines() const
{
    std::vector<const ContentLine *> found;
    for (const IcalEntry &entry : entries)
        if (entry.line())
            found.push_back(entry.line());
    return found;
}

QByteArray IcalComponent::value(const QByteArray &lineName) const
{
    const ContentLine *found = line(lineName);
    return found ? found->value() : QByteArray();
}

ContentLine IcalComponent::makeLine(const QByteArray &head, const QByteArray &value) const
{
    return ContentLine::make(head, value, lineEnd());
}

void IcalComponent::setValue(const QByteArray &lineName, const QByteArray &value)
{
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const IcalEntry &entry) { return entry.isLineOf(lineName); });
    if (found == entries.end())
        addLine(makeLine(lineName, value));
    else if (found->line()->value() != value)
        found->content = found->line()->withValue(value);
}

std::size_t IcalComponent::placeOfNewLine() const
{
    std::size_t place = 0;
    for (std::size_t index = 0; index < entries.size(); ++index)
        if (entries[index].line())
            place = index + 1;
    return place;
}

void IcalComponent::changeText(const QByteArray &lineName, const QString &before, const QString &after)
{
    if (before == after)
        return;
    if (after.isEmpty())
        removeLines(lineName);
    else
        setValue(lineName, IcalText::encoded(after));
}

void IcalComponent::addLine(const ContentLine &added)
{
    entries.insert(entries.begin() + std::ptrdiff_t(placeOfNewLine()), IcalEntry{added});
}

void IcalComponent::replaceLines(const QByteArray &lineName, const std::vector<ContentLine> &replacements)
{
    const auto isNamed = [&](const IcalEntry &entry) { return entry.isLineOf(lineName); };
    const auto first = std::find_if(entries.begin(), entries.end(), isNamed);
    const std::size_t place =
        first == entries.end() ? placeOfNewLine() : std::size_t(first - entries.begin());
    std::erase_if(entries, isNamed);
    for (std::size_t index = 0; index < replacements.size(); ++index)
        entries.insert(entries.begin() + std::ptrdiff_t(place + index), IcalEntry{replacements[index]});
}

std::vector<const IcalComponent *> IcalComponent::children() const
{
    std::vector<const IcalComponent *> found;
    for (const IcalEntry &entry : entries)
        if (entry.child())
            found.push_back(entry.child());
    return found;
}

IcalComponent *IcalComponent::childAt(std::size_t index)
{
    for (IcalEntry &entry : entries)
        if (entry.child() && index-- == 0)
            return entry.child();
    return nullptr;
}

void IcalComponent::addChild(const IcalComponent &child)
{
    entries.push_back(IcalEntry{child});
}

void IcalComponent::prependChild(const IcalComponent &child)
{
    const auto first = std::find_if(entries.begin(), entries.end(),
                                    [](const IcalEntry &entry) { return entry.child() != nullptr; });
    entries.insert(first, IcalEntry{child});
}

void IcalComponent::replaceChildren(const std::function<bool(const IcalComponent &)> &isChosen,
                                    const std::vector<IcalComponent> &replacements)
{
    const auto isMeant = [&](const IcalEntry &entry) { return entry.child() && isChosen(*entry.child()); };
    const auto first = std::find_if(entries.begin(), entries.end(), isMeant);
    const std::size_t place = std::size_t(first - entries.begin());
    std::erase_if(entries, isMeant);
    for (std::size_t index = 0; index < replacements.size(); ++index)
        entries.insert(entries.begin() + std::ptrdiff_t(place + index), IcalEntry{replacements[index]});
}

void IcalComponent::removeChildrenAt(const std::set<std::size_t> &indexes)
{
    std::size_t index = 0;
    std::erase_if(entries,
                  [&](const IcalEntry &entry) { return entry.child() && indexes.contains(index++); });
}

void IcalComponent::append(IcalEntry entry)
{
    entries.push_back(std::move(entry));
}
