#pragma once

#include <QStringList>

#include <optional>

/// What the program is asked on its command line.
namespace CommandLine {

/// Answers "--help" and "--version" on the standard output, before anything of the desktop is needed.
/// \return the exit code, absent if neither was asked.
std::optional<int> answer(int argc, char *argv[]);

/// Tells on the standard error of the first argument that neither this program nor Qt knows and that is no
/// file, before anything of the desktop is needed. \return the exit code (2), absent if all are known.
std::optional<int> refuse(int argc, char *argv[]);

/// The files that are to be opened, by their full paths.
QStringList files(int argc, char *argv[]);

} // namespace CommandLine
