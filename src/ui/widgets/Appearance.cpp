#include "widgets/Appearance.h"

#include <QApplication>
#include <QWidget>

#include <utility>

Appearance &Appearance::shared()
{
    static Appearance instance;
    return instance;
}

void Appearance::show(Theme::Scheme scheme, std::optional<QColor> accent)
{
    if (scheme == Theme::scheme() && accent == shownAccent)
        return;
    shownAccent = accent;
    Theme::setScheme(scheme, accent);
    QApplication::setPalette(Theme::palette());
    Q_EMIT changed();
    // What is painted with colours that the palette does not have is not told by it.
    for (QWidget *widget : QApplication::allWidgets())
        widget->update();
}

void Appearance::setTextScale(double scale)
{
    if (scale == textScale)
        return;
    textScale = scale;
    QApplication::setFont(Theme::applicationFont(scale));
    Q_EMIT changed();
}

void Appearance::setCompact(bool isWanted)
{
    if (std::exchange(isCompactShown, isWanted) != isWanted)
        Q_EMIT changed();
}

void Appearance::follow(QWidget &widget, std::function<void()> block)
{
    block();
    connect(&shared(), &Appearance::changed, &widget, std::move(block));
}

void Appearance::setFont(QWidget &widget, Theme::FontRole role)
{
    follow(widget, [&widget, role] { widget.setFont(Theme::font(role)); });
}

namespace {

/// Belongs to the widget whose words it colours.
class TextColour : public QObject
{
public:
    TextColour(QWidget &coloured, Theme::Role textRole)
        : QObject(&coloured)
        , widget(coloured)
        , role(textRole)
    {
        connect(&Appearance::shared(), &Appearance::changed, this, [this] { apply(); });
        apply();
    }

    void apply()
    {
        QPalette palette = widget.palette();
        palette.setColor(QPalette::WindowText, role);
        widget.setPalette(palette);
    }

    QWidget &widget;
    Theme::Role role;
};

} // namespace

void Appearance::colourText(QWidget &widget, Theme::Role role)
{
    for (QObject *child : widget.children()) {
        if (auto *colour = dynamic_cast<TextColour *>(child)) {
            colour->role = role;
            return colour->apply();
        }
    }
    new TextColour(widget, role);
}

PaperColours::PaperColours()
    : former(Theme::shown())
{
    Theme::setShown(Theme::Shown(Theme::Scheme::Light));
}

PaperColours::~PaperColours()
{
    Theme::setShown(former);
}
