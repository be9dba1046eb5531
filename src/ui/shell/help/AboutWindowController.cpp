#include "shell/help/AboutWindowController.h"

#include "foundation/Clock.h"
#include "foundation/Localization.h"
#include "records/FeedbackMail.h"
#include "records/dates/MTDates.h"
#include "store/AppDelegate.h"
#include "widgets/Icons.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"
#include "workspace/PlatformConfiguration.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int aboutMargin = 4 * Theme::unit;
constexpr int aboutIcon = 96;

QPointer<AboutWindowController> &openAboutWindow()
{
    static QPointer<AboutWindowController> window;
    return window;
}

void addLine(QVBoxLayout &column, const char *name, const QString &text, Theme::FontRole role,
             Theme::Role colour)
{
    QLabel *label = makeTextLabel(text, role, colour);
    label->setObjectName(QString::fromLatin1(name));
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(false);
    label->setTextFormat(text.contains(u"<a "_s) ? Qt::RichText : Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse |
                                   Qt::LinksAccessibleByKeyboard);
    QObject::connect(label, &QLabel::linkActivated, label,
                     [](const QString &link) { Workspace::openUrl(link); });
    column.addWidget(label);
}

QString linkTo(const QString &address, const QString &text)
{
    return u"<a href=\"%1\">%2</a>"_s.arg(address.toHtmlEscaped(), text.toHtmlEscaped());
}

} // namespace

AboutWindowController::AboutWindowController()
    : QWidget(nullptr, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
{
    setObjectName(u"AboutWindow"_s);
    setWindowTitle(localized(u"About Morvane"_s));
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(2 * aboutMargin, aboutMargin, 2 * aboutMargin, aboutMargin);
    column->setSpacing(Theme::unit);
    column->setSizeConstraint(QLayout::SetFixedSize);
    auto *icon = new QLabel;
    icon->setPixmap(Icons::application().pixmap(aboutIcon));
    icon->setAlignment(Qt::AlignHCenter);
    column->addWidget(icon);
    const PlatformConfiguration configuration;
    addLine(*column, "labelTitle", u"Morvane"_s, Theme::FontRole::Large, Theme::text);
    addLine(*column, "labelVersion", u"%1 (%2)"_s.arg(AppDelegate::version(), FeedbackMail::revision()),
            Theme::FontRole::Body, Theme::secondaryText);
    const QString maker = configuration.text(u"holder"_s);
    addLine(*column, "labelHolder",
            u"© %1 %2"_s.arg(QString::number(MTDates::year(Clock::now())),
                             maker.isEmpty() ? localized(u"The Morvane authors"_s) : maker),
            Theme::FontRole::Small, Theme::secondaryText);
    const QString page = configuration.text(u"productPage"_s);
    if (!page.isEmpty())
        addLine(*column, "labelPage", localized(u"Web site: "_s) + linkTo(page, page), Theme::FontRole::Body,
                Theme::text);
    const QString address = configuration.text(u"supportAddress"_s);
    if (!address.isEmpty())
        addLine(
            *column, "labelSupport",
            localized(u"Support:"_s) + u' ' +
                linkTo(u"mailto:"_s + QString::fromLatin1(QUrl::toPercentEncoding(address, "@")), address),
            Theme::FontRole::Body, Theme::text);
}

AboutWindowController *AboutWindowController::defaultController()
{
    if (!openAboutWindow())
        openAboutWindow() = new AboutWindowController;
    return openAboutWindow();
}

AboutWindowController *AboutWindowController::shared()
{
    return openAboutWindow();
}

void AboutWindowController::showWindow()
{
    if (!isVisible()) {
        const QWidget *behind = QApplication::activeWindow();
        adjustSize();
        move((behind ? behind->frameGeometry() : screen()->availableGeometry()).center() - rect().center());
    }
    show();
    raise();
    activateWindow();
}

void AboutWindowController::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
