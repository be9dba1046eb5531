#include "CommandLine.h"

#include "store/AppDelegate.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace {

constexpr const char *usage =
    "Usage: morvane [option] [file...]\n"
    "Tasks, projects, contacts and calendars in one place.\n"
    "\n"
    "Of a file (.vcf, .ics, .csv), the window offers what can be imported.\n"
    "\n"
    "  -h, --help     say this and end\n"
    "  -v, --version  say the version and end\n"
    "\n"
    "Options of Qt, such as \"-platform\" and \"-style\", are passed on. A second start\n"
    "brings the window of the first one to the front.\n";

// What QApplication and the platform of X11 take from the command line, with one dash or two.
constexpr std::array<std::string_view, 15> optionsOfQtWithValue = {"platform",
                                                                   "platformpluginpath",
                                                                   "platformtheme",
                                                                   "plugin",
                                                                   "qwindowgeometry",
                                                                   "session",
                                                                   "qwindowicon",
                                                                   "qwindowtitle",
                                                                   "display",
                                                                   "geometry",
                                                                   "icon",
                                                                   "title",
                                                                   "style",
                                                                   "stylesheet",
                                                                   "name"};
constexpr std::array<std::string_view, 4> optionsOfQt = {"reverse", "nograb", "dograb", "widgetcount"};

/// The argument without its dashes; empty if it is no option.
std::string_view nameOf(std::string_view argument)
{
    if (!argument.starts_with('-'))
        return {};
    return argument.substr(argument.starts_with("--") ? 2 : 1);
}

template <std::size_t count>
bool isOneOf(const std::array<std::string_view, count> &names, std::string_view argument)
{
    return std::find(names.begin(), names.end(), nameOf(argument)) != names.end();
}

/// Such as "-style=fusion".
template <std::size_t count>
bool beginsWithOneOf(const std::array<std::string_view, count> &names, std::string_view argument)
{
    const std::string_view name = nameOf(argument);
    return name.find('=') != std::string_view::npos &&
           std::find(names.begin(), names.end(), name.substr(0, name.find('='))) != names.end();
}

bool isAsked(int argc, char *argv[], std::string_view shortName, std::string_view longName)
{
    for (int place = 1; place < argc; ++place) {
        const std::string_view argument = argv[place];
        if (argument == shortName || argument == longName)
            return true;
        // What follows is its value, whatever it looks like.
        if (isOneOf(optionsOfQtWithValue, argument))
            ++place;
    }
    return false;
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

namespace {

/// What an argument is, without a look at the others.
enum class Kind { OfQt, OfQtWithValue, File, Unknown };

Kind kindOf(std::string_view argument)
{
    if (isOneOf(optionsOfQtWithValue, argument))
        return Kind::OfQtWithValue;
    if (isOneOf(optionsOfQt, argument) || beginsWithOneOf(optionsOfQtWithValue, argument))
        return Kind::OfQt;
    return argument.starts_with('-') || argument.empty() ? Kind::Unknown : Kind::File;
}

} // namespace

std::optional<int> CommandLine::refuse(int argc, char *argv[])
{
    for (int place = 1; place < argc; ++place) {
        switch (kindOf(argv[place])) {
        case Kind::OfQt:
            break;
        case Kind::OfQtWithValue:
            if (++place < argc)
                break;
            std::fprintf(stderr, "morvane: \"%s\" needs a value. See \"morvane --help\".\n", argv[argc - 1]);
            return 2;
        case Kind::File:
            if (QFileInfo(QFile::decodeName(argv[place])).isFile())
                break;
            std::fprintf(stderr, "morvane: there is no file \"%s\". See \"morvane --help\".\n", argv[place]);
            return 2;
        case Kind::Unknown:
            std::fprintf(stderr, "morvane: unknown argument \"%s\". See \"morvane --help\".\n", argv[place]);
            return 2;
        }
    }
    return std::nullopt;
}

QStringList CommandLine::files(int argc, char *argv[])
{
    QStringList paths;
    for (int place = 1; place < argc; ++place) {
        const Kind kind = kindOf(argv[place]);
        if (kind == Kind::OfQtWithValue)
            ++place;
        else if (kind == Kind::File)
            paths.append(QFileInfo(QFile::decodeName(argv[place])).absoluteFilePath());
    }
    return paths;
}
