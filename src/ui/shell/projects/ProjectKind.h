#pragma once

struct RecordKind;

/// Projects: what belongs together, with its span of time, its tasks and the contacts that take part.
namespace ProjectKind {

RecordKind description();

} // namespace ProjectKind
