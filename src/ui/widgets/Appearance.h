#pragma once

#include "widgets/Theme.h"

#include <QObject>

#include <functional>

/// Brings a scheme of the theme, the size of the text and the density of lists onto the screen, at any time
/// while the program runs. Main thread only.
class Appearance : public QObject
{
    Q_OBJECT
public:
    static Appearance &shared();

    /// Shows all windows in a scheme. Nothing happens if it is shown already with this accent.
    /// \param accent the one of the desktop; absent for our own.
    void show(Theme::Scheme scheme, std::optional<QColor> accent = {});

    /// Makes all texts larger or smaller than the desktop's font is, 1 for as it is.
    void setTextScale(double scale);

    /// Whether lists show more rows, each on one line.
    bool isCompact() const { return isCompactShown; }
    void setCompact(bool isWanted);

    /// Calls a block now, and whenever the scheme changes as long as the widget lives.
    static void follow(QWidget &widget, std::function<void()> block);
    /// Gives a widget a font of the theme, which follows the size of the text.
    static void setFont(QWidget &widget, Theme::FontRole role);
    /// Gives the words of a widget a colour of the theme, which follows the scheme. A second call replaces
    /// the first.
    static void colourText(QWidget &widget, Theme::Role role);

Q_SIGNALS:
    void changed();

private:
    Appearance() = default;

    std::optional<QColor> shownAccent;
    double textScale = 1;
    bool isCompactShown = false;
};

/// What is painted while it lives is meant for paper: in the light scheme, whatever the screen has.
class PaperColours
{
public:
    PaperColours();
    ~PaperColours();
    PaperColours(const PaperColours &) = delete;
    PaperColours &operator=(const PaperColours &) = delete;

private:
    Theme::Shown former;
};
