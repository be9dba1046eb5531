#include "shell/help/HelpWindow.h"

#include "foundation/Localization.h"
#include "shell/help/HelpPages.h"
#include "widgets/Appearance.h"
#include "widgets/Icons.h"
#include "widgets/KeyTip.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"
#include "workspace/Workspace.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QSize firstSizeOfHelp(860, 700);
constexpr int helpMargin = 5 * Theme::unit;
constexpr int charactersOfField = 26;
constexpr int mostSteps = 10;
constexpr int leastSteps = -3;

QPointer<HelpWindow> &openHelpWindow()
{
    static QPointer<HelpWindow> window;
    return window;
}

} // namespace

HelpBrowser::HelpBrowser(QWidget *parent)
    : QTextBrowser(parent)
{
    setObjectName(u"helpBrowser"_s);
    setFrameShape(QFrame::NoFrame);
    setOpenExternalLinks(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    fitting.setSingleShot(true);
    connect(&fitting, &QTimer::timeout, this, &HelpBrowser::fitPictures);
    document()->setDocumentMargin(helpMargin);
    Appearance::follow(*this, [this] {
        document()->setDefaultStyleSheet(
            u"h1 { font-size: xx-large; margin-top: 0px; } h2 { font-size: large; margin-top: 24px; }"
            "p, li { margin-bottom: 8px; line-height: 135%; } a { color: %1; text-decoration: none; }"_s.arg(
                Theme::selectedText.name()));
        if (!source().isEmpty())
            reload();
    });
}

QVariant HelpBrowser::loadResource(int type, const QUrl &name)
{
    const QString file = name.fileName();
    if (type == QTextDocument::HtmlResource)
        return HelpPages::html(file);
    if (type == QTextDocument::ImageResource) {
        QImage picture(HelpPages::folder() + u'/' + file);
        // The pictures are taken at twice the size at which they are shown.
        const int room = std::max(200, viewport()->width() - 2 * helpMargin - Theme::scrollBarWidth);
        return picture.width() > room ? picture.scaledToWidth(room, Qt::SmoothTransformation) : picture;
    }
    return {};
}

void HelpBrowser::resizeEvent(QResizeEvent *event)
{
    QTextBrowser::resizeEvent(event);
    if (viewport()->width() != fittedWidth)
        fitting.start(0);
}

void HelpBrowser::fitPictures()
{
    const bool isFirst = std::exchange(fittedWidth, viewport()->width()) == 0;
    if (isFirst || source().isEmpty())
        return;
    const double place = double(verticalScrollBar()->value()) / std::max(1, verticalScrollBar()->maximum());
    reload();
    verticalScrollBar()->setValue(int(place * verticalScrollBar()->maximum()));
}

void HelpBrowser::doSetSource(const QUrl &name, QTextDocument::ResourceType type)
{
    if (!name.scheme().isEmpty())
        Workspace::openUrl(name.toString());
    else
        QTextBrowser::doSetSource(name, type);
}

HelpWindow::HelpWindow()
    : QWidget(nullptr, Qt::Window)
    , text(new HelpBrowser)
    , field(new QLineEdit)
    , note(makeTextLabel({}, Theme::FontRole::Small, Theme::secondaryText))
    , bar(new QHBoxLayout)
{
    setObjectName(u"HelpWindow"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    makeBar();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addLayout(bar);
    column->addWidget(text, 1);
    connect(text, &QTextBrowser::sourceChanged, this, &HelpWindow::pageChanged);
    connect(text, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    back->setEnabled(false);
    resize(firstSizeOfHelp);
}

void HelpWindow::makeBar()
{
    bar->setContentsMargins(2 * Theme::unit, Theme::unit, 2 * Theme::unit, Theme::unit);
    bar->setSpacing(Theme::unit);
    back = addButton("buttonBack", u"chevron-left"_s, localized(u"Back"_s), u"Alt+Left"_s,
                     [this] { text->backward(); });
    addButton("buttonContents", u"tasks"_s, localized(u"Contents"_s), u"Alt+Home"_s,
              [this] { text->showPage(HelpPages::contents); });
    addButton("buttonSmaller", u"chevron-down"_s, localized(u"Smaller Text"_s), u"Ctrl+-"_s,
              [this] { scale(-1); });
    addButton("buttonLarger", u"chevron-up"_s, localized(u"Larger Text"_s), u"Ctrl++"_s,
              [this] { scale(1); });
    bar->addStretch(1);
    note->setObjectName(u"labelNote"_s);
    note->setWordWrap(false);
    bar->addWidget(note);
    field->setObjectName(u"fieldSearch"_s);
    field->setPlaceholderText(localized(u"Search the guide"_s));
    field->setAccessibleName(field->placeholderText());
    field->setClearButtonEnabled(true);
    field->setMinimumWidth(charactersOfField * field->fontMetrics().averageCharWidth());
    bar->addWidget(field);
    connect(field, &QLineEdit::returnPressed, this, &HelpWindow::findNext);
    connect(field, &QLineEdit::textChanged, note, &QLabel::clear);
}

QToolButton *HelpWindow::addButton(const char *name, const QString &icon, const QString &title,
                                   const QString &keys, const std::function<void()> &press)
{
    auto *button = new QToolButton;
    const QKeySequence sequence(keys, QKeySequence::PortableText);
    button->setObjectName(QString::fromLatin1(name));
    button->setIcon(Icons::icon(icon, Theme::text));
    button->setText(title);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::TabFocus);
    button->setShortcut(sequence);
    button->setToolTip(keytip::of(title, sequence));
    connect(button, &QToolButton::clicked, this, press);
    bar->addWidget(button);
    return button;
}

HelpWindow *HelpWindow::shared()
{
    return openHelpWindow();
}

void HelpWindow::showPage(const QString &name)
{
    QPointer<HelpWindow> &window = openHelpWindow();
    if (!window)
        window = new HelpWindow;
    window->show();
    if (window->text->page() != name)
        window->text->showPage(name);
    window->raise();
    window->activateWindow();
    window->text->setFocus();
}

void HelpWindow::pageChanged(const QUrl &page)
{
    const bool isShortcuts = page.fileName() == HelpPages::shortcuts;
    setWindowTitle(localized(isShortcuts ? u"Keyboard Shortcuts"_s : u"User Guide"_s));
    text->setAccessibleName(windowTitle());
}

void HelpWindow::findNext()
{
    const QString wanted = field->text().trimmed();
    note->clear();
    if (wanted.isEmpty() || text->find(wanted))
        return;
    const QStringList names = HelpPages::names();
    const qsizetype place = std::max<qsizetype>(0, names.indexOf(text->page()));
    // All others, and at last this page again from its beginning.
    for (qsizetype step = 1; step <= names.size(); ++step) {
        const QString &name = names.at((place + step) % names.size());
        if (!HelpPages::words(name).contains(wanted, Qt::CaseInsensitive))
            continue;
        if (name != text->page())
            text->showPage(name);
        text->moveCursor(QTextCursor::Start);
        text->find(wanted);
        return;
    }
    note->setText(localized(u"Nothing found"_s));
}

void HelpWindow::scale(int steps)
{
    const int wanted = std::clamp(scaled + steps, leastSteps, mostSteps);
    text->zoomIn(wanted - scaled);
    scaled = wanted;
}

void HelpWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Find)) {
        field->setFocus(Qt::ShortcutFocusReason);
        field->selectAll();
    } else if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}
