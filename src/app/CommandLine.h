#pragma once

#include <QStringList>

#include <optional>

/// What the program is asked on its command line.
namespace CommandLine {

/// Answers "--help" and "--version" on the standard output, before anything of the desktop is needed.
/// \return the exit code, absent if neither was asked.
std::optional<int> answer(int argc, char *argv[]);

/// Tells on the standard error what is left of the arguments after Qt has taken its own.
/// \param arguments begin with the name of the program.
/// \return the exit code (2), absent if nothing is left.
std::optional<int> refuse(const QStringList &arguments);

} // namespace CommandLine
