// Whether everything that the screens paint can be read, in each scheme and with each accent.

#include "widgets/Theme.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

#include <string>

using namespace Qt::Literals::StringLiterals;

namespace {

using Theme::Role;

struct Pair
{
    std::string name;
    Role ink, ground;
    double least;
};

constexpr double text = Theme::leastTextContrast;
/// What has to be seen, but not read: marks, and the edges of controls.
constexpr double mark = Theme::leastMarkContrast;

std::vector<Pair> pairs()
{
    std::vector<Pair> all;
    const std::pair<const char *, Role> words[] = {{"text", Theme::text},
                                                   {"secondaryText", Theme::secondaryText},
                                                   {"placeholderText", Theme::placeholderText},
                                                   {"selectedText", Theme::selectedText},
                                                   {"accent", Theme::accent},
                                                   {"overdue", Theme::overdue},
                                                   {"warning", Theme::warning},
                                                   {"filterOff", Theme::filterOff},
                                                   {"filterInactive", Theme::filterInactive}};
    const std::pair<const char *, Role> grounds[] = {{"content", Theme::content},
                                                     {"card", Theme::card},
                                                     {"control", Theme::control},
                                                     {"hover", Theme::hover},
                                                     {"quietDay", Theme::quietDay}};
    for (const auto &[word, ink] : words)
        for (const auto &[below, ground] : grounds)
            all.push_back({std::string(word) + " on " + below, ink, ground, text});
    const std::vector<Pair> single = {
        {"words of a chosen row", Theme::text, Theme::selection, text},
        {"quiet words of a chosen row", Theme::secondaryText, Theme::selection, text},
        {"title of a chosen row", Theme::selectedText, Theme::selection, text},
        {"title of a chosen row elsewhere", Theme::selectedText, Theme::inactiveSelection, text},
        {"quiet words of a row chosen elsewhere", Theme::secondaryText, Theme::inactiveSelection, text},
        {"words of a pressed control", Theme::text, Theme::controlPressed, text},
        {"start window, right", Theme::startRightText, Theme::card, text},
        {"label of minutes", Theme::minuteLabel, Theme::card, text},
        {"words on the accent", Theme::textOnAccent, Theme::accent, text},
        {"words on the accent under the mouse", Theme::textOnAccent, Theme::accentHover, text},
        {"words on the pressed accent", Theme::textOnAccent, Theme::accentPressed, text},
        {"words on a calendar that is dark", Theme::textOnColour, Role(QColor(78, 107, 145)), text},
        {"overdue in the badge", Theme::badgeOverdueText, Theme::badgeOverdue, text},
        {"circle to tick", Theme::checkBox, Theme::card, mark},
        {"ticked circle", Theme::checkBoxDone, Theme::card, mark},
        {"edge of a control", Theme::controlBorder, Theme::control, mark},
        {"edge of a control on a card", Theme::controlBorder, Theme::card, mark},
        {"edge of a control on the screen", Theme::controlBorder, Theme::content, mark},
        {"icon of an empty list", Theme::emptyIcon, Theme::content, mark},
        {"icon of an empty list on its disc", Theme::emptyIcon, Theme::emptyDisc, mark},
        {"label of a dragged edge", Theme::minuteLabelText, Theme::minuteLabel, text},
        {"words on the veil", Theme::textOnVeil, Theme::veil, text},
        {"mark in the sidebar", Theme::sidebarWarning, Theme::sidebar, mark},
        {"keys on the veil", Theme::sidebarAccent, Theme::veil, text},
        {"present moment", Theme::currentTime, Theme::card, mark},
        {"ring", Theme::focusRing, Theme::card, mark},
        {"ring on the screen", Theme::focusRing, Theme::content, mark},
    };
    all.insert(all.end(), single.begin(), single.end());
    for (const Role &portrait : Theme::portraits)
        all.push_back({"initials", Theme::portraitText, portrait, text});
    return all;
}

/// A colour as it is seen on what lies below it, down to the opaque card.
QColor seen(const Role &role, Theme::Role below = Theme::card)
{
    return Theme::mixed(role, below);
}

class ThemeTest : public testing::Test
{
protected:
    ~ThemeTest() override { Theme::setScheme(Theme::Scheme::Light); }
};

} // namespace

TEST_F(ThemeTest, EveryWordAndMarkStandsOutInEachSchemeWithEachAccent)
{
    const std::optional<QColor> accents[] = {
        std::nullopt,         QColor(255, 255, 255), QColor(0, 0, 0),
        QColor(255, 221, 0),  QColor(230, 97, 0),    QColor(51, 209, 122),
        QColor(129, 61, 156), QColor(53, 132, 228),  QColor(128, 128, 128)};
    for (const Theme::Scheme scheme : Theme::schemes) {
        for (const auto &accent : accents) {
            Theme::setScheme(scheme, accent);
            for (const Pair &pair : pairs()) {
                EXPECT_GE(Theme::contrast(pair.ink, seen(pair.ground)), pair.least)
                    << pair.name << ", scheme " << int(scheme) << ", accent "
                    << (accent ? accent->name().toStdString() : "our own");
            }
        }
    }
}

TEST_F(ThemeTest, DotsOfAnyColourHaveAnEdgeThatIsSeen)
{
    for (const Theme::Scheme scheme : Theme::schemes) {
        Theme::setScheme(scheme);
        for (const QColor &colour :
             {QColor(Theme::priorityHigh), QColor(Theme::priorityMedium), QColor(Theme::priorityLow),
              QColor(Qt::white), QColor(Qt::black), QColor(255, 255, 0)})
            EXPECT_GE(Theme::contrast(Theme::dotEdge(colour), Theme::card), mark) << int(scheme);
    }
}

TEST_F(ThemeTest, NoRoleIsForgotten)
{
    // Faint on purpose: what cannot be used, what only divides or shades, and what has its words in a role
    // above.
    const QStringList faint =
        u"disabledText cardBorder divider edge shadow scrollHandle scrollHandleHover scrollHandleOnDark "
        "scrollHandleOnDarkHover halfHourLine eventShadow eventShadowOverOther sidebarHover filterPillHover "
        "darkTextOnColour startText"_s.split(u' ');
    const auto read = [](const QString &path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        return QString::fromUtf8(file.readAll());
    };
    const QString roles = read(QStringLiteral(MORVANE_SOURCES "/ui/widgets/Theme.h"));
    const QString tests = read(QStringLiteral(MORVANE_SOURCES "/../tests/ui/layout/ThemeTest.cpp"));
    static const QRegularExpression declared(u"inline constexpr Role (\\w+)"_s);
    int count = 0;
    for (const auto &match : declared.globalMatch(roles)) {
        const QString name = match.captured(1);
        EXPECT_TRUE(faint.contains(name) || tests.contains(u"Theme::"_s + name)) << qPrintable(name);
        ++count;
    }
    EXPECT_GT(count, 50);
}

TEST_F(ThemeTest, TheDarkSidebarCanBeReadInEachScheme)
{
    for (const Theme::Scheme scheme : Theme::schemes) {
        Theme::setScheme(scheme);
        const QColor bar = Theme::mixed(Theme::sidebar, Qt::black);
        const QColor chosen = Theme::mixed(Theme::sidebarSelection, bar);
        for (const QColor &ground : {bar, chosen}) {
            EXPECT_GE(Theme::contrast(Theme::sidebarText.darker(108), ground), text);
            EXPECT_GE(Theme::contrast(Theme::sidebarQuiet, ground), text);
            EXPECT_GE(Theme::contrast(Theme::sidebarFocus, ground), mark);
            EXPECT_GE(Theme::contrast(Theme::badgeText, Theme::mixed(Theme::badge, ground)), text);
        }
    }
}

TEST_F(ThemeTest, HighContrastIsHighAndHasEdges)
{
    for (const Theme::Scheme scheme : {Theme::Scheme::LightContrast, Theme::Scheme::DarkContrast}) {
        Theme::setScheme(scheme);
        for (const Role &ink : {Theme::text, Theme::secondaryText, Theme::selectedText, Theme::accent})
            EXPECT_GE(Theme::contrast(ink, Theme::card), 7);
        for (const Role &edge : {Theme::controlBorder, Theme::cardBorder, Theme::disabledText})
            EXPECT_GE(Theme::contrast(edge, Theme::card), mark);
    }
}

TEST_F(ThemeTest, AColourBecomesReadableAndKeepsItsHue)
{
    const QColor yellow(255, 221, 0);
    const QColor onWhite = Theme::readable(yellow, Qt::white, text);
    EXPECT_GE(Theme::contrast(onWhite, Qt::white), text);
    EXPECT_NEAR(onWhite.hslHue(), yellow.hslHue(), 2);
    EXPECT_EQ(Theme::readable(yellow, Qt::black, text), yellow) << "what can be read stays as it is";
    EXPECT_GE(Theme::contrast(Theme::readable(Qt::black, QColor(20, 20, 20), text), QColor(20, 20, 20)),
              text);
}
