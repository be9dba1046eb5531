#pragma once

#include <QString>

/// The files that records are written to.
enum class ExportFormat {
    /// vCards (3.0), for address books.
    VCard,
    /// Comma-separated values (RFC 4180), for spreadsheets.
    Csv,
    /// iCalendar (RFC 5545), for calendars and programs for tasks.
    ICalendar,
};

namespace exportformat {

/// What the names of such files end with, without the dot.
QString suffixOf(ExportFormat format);
/// For the user, such as "vCards (*.vcf)".
QString filterOf(ExportFormat format);

} // namespace exportformat
