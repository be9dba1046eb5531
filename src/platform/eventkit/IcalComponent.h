#pragma once

#include "eventkit/ContentLine.h"

#include <functional>
#include <set>
#include <vector>

struct IcalEntry;

/// A component of an iCalendar text (RFC 5545, section 3.6): its properties and inner components in their
/// order, with every byte that was read. Names are given and compared in capitals.
class IcalComponent
{
public:
    /// A new one, without properties.
    IcalComponent(const QByteArray &componentName, const QByteArray &lineEnd);
    /// One that begins with this line of a text.
    explicit IcalComponent(const ContentLine &beginLine);
    IcalComponent(const IcalComponent &);
    IcalComponent(IcalComponent &&) noexcept;
    IcalComponent &operator=(const IcalComponent &);
    IcalComponent &operator=(IcalComponent &&) noexcept;
    ~IcalComponent();

    const QByteArray &name() const { return upperName; }
    /// What new lines end with: as the first line does.
    QByteArray lineEnd() const;
    /// Adds it to a text.
    void writeTo(QByteArray &text) const;

    /// The first property of that name; null if there is none. Valid until the next change.
    const ContentLine *line(const QByteArray &lineName) const;
    std::vector<const ContentLine *> lines(const QByteArray &lineName) const;
    /// All properties in their order.
    std::vector<const ContentLine *> allLines() const;
    /// The value of the first such property as it is written; null if there is none.
    QByteArray value(const QByteArray &lineName) const;

    /// Sets the value of the first property of that name, which keeps its parameters, or adds one.
    void setValue(const QByteArray &lineName, const QByteArray &value);
    /// Puts these where the first property of that name stands, or behind all others, and takes out the
    /// others of the name.
    void replaceLines(const QByteArray &lineName, const std::vector<ContentLine> &replacements);
    void removeLines(const QByteArray &lineName) { replaceLines(lineName, {}); }
    /// Sets a property of the type TEXT where it has changed; an empty text takes it out.
    void changeText(const QByteArray &lineName, const QString &before, const QString &after);
    /// Adds a property behind all others.
    void addLine(const ContentLine &added);
    /// A line as this component would write it.
    ContentLine makeLine(const QByteArray &head, const QByteArray &value) const;

    /// The inner components in their order. Valid until the next change.
    std::vector<const IcalComponent *> children() const;
    IcalComponent *childAt(std::size_t index);
    void addChild(const IcalComponent &child);
    /// Adds one before all others.
    void prependChild(const IcalComponent &child);
    /// Puts these where the first chosen inner component stands, or behind all, and takes out the chosen.
    void replaceChildren(const std::function<bool(const IcalComponent &)> &isChosen,
                         const std::vector<IcalComponent> &replacements);

    void removeChildrenAt(const std::set<std::size_t> &indexes);

    /// For the parser: what follows in the text.
    void append(IcalEntry entry);
    void close(const ContentLine &endLine) { end = endLine; }

private:
    std::size_t placeOfNewLine() const;

    ContentLine begin;
    ContentLine end;
    QByteArray upperName;
    std::vector<IcalEntry> entries;
};
