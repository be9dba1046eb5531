#include "CommandLine.h"

#include "store/AppDelegate.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace {

constexpr const char *usage =
    "Usage: morvane [option]\n"
    "Tasks, projects, contacts and calendars in one place.\n"
    "\n"
    "  -h, --help     say this and end\n"
    "  -v, --version  say the version and end\n"
    "\n"
    "Options of Qt, such as \"-platform\" and \"-style\", are passed on. A second start\n"
    "brings the window of the first one to the front.\n";

bool isAsked(int argc, char *argv[], std::string_view shortName, std::string_view longName)
{
    return std::any_of(argv + std::min(argc, 1), argv + argc,
                       [=](std::string_view one) { return one == shortName || one == longName; });
}

} // namespace

std::optional<int> CommandLine::answer(int argc, char *argv[])
{
    if (isAsked(argc, argv, "-h", "--help")) {
        std::fputs(usage, stdout);
        return 0;
    }
    if (isAsked(argc, argv, "-v", "--version")) {
        std::printf("Morvane %s\n", qPrintable(AppDelegate::version()));
        return 0;
    }
    return std::nullopt;
}

std::optional<int> CommandLine::refuse(const QStringList &arguments)
{
    if (arguments.size() <= 1)
        return std::nullopt;
    std::fprintf(stderr, "morvane: unknown argument \"%s\". See \"morvane --help\".\n",
                 qPrintable(arguments.at(1)));
    return 2;
}
