#include "widgets/MessageBoxPresenter.h"
#include "widgets/Appearance.h"

#include "foundation/Localization.h"
#include "widgets/ButtonLook.h"
#include "widgets/Icons.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QApplication>
#include <QEventLoop>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

constexpr int boxIconSize = 40;

/// The button that Escape and the window's close button stand for: the one that does least.
static qsizetype quietButton(const QStringList &buttons)
{
    const qsizetype cancel = buttons.indexOf(localized(u"Cancel"_s));
    return cancel >= 0 ? cancel : buttons.size() - 1;
}

static void fillWords(QMessageBox &box, const AlertQuestion &question)
{
    const bool hasMessage = !question.message.isEmpty();
    box.setWindowTitle(question.title.isEmpty() ? QGuiApplication::applicationDisplayName() : question.title);
    box.setText(readablePart(hasMessage ? question.message : question.title));
    box.setInformativeText(readablePart(question.informativeText));
    box.setIconPixmap(Icons::pixmap(u"info"_s, Theme::accent, boxIconSize, box.devicePixelRatio()));
    box.setTextFormat(Qt::PlainText);
}

/// The question stands out from what explains it; alone it stands beside the middle of the icon.
static void dress(QMessageBox &box)
{
    if (auto *question = box.findChild<QLabel *>(u"qt_msgbox_label"_s)) {
        question->setFont(Theme::font(Theme::FontRole::BodyStrong));
        if (box.informativeText().isEmpty())
            question->setMinimumHeight(boxIconSize);
    }
    if (auto *explanation = box.findChild<QLabel *>(u"qt_msgbox_informativelabel"_s))
        Appearance::colourText(*explanation, Theme::secondaryText);
}

/// Wide enough for a sentence or the path of a file.
static void widen(QMessageBox &box)
{
    constexpr int leastWidth = 420;
    constexpr int margin = 20;
    auto *grid = qobject_cast<QGridLayout *>(box.layout());
    if (!grid)
        return;
    grid->setContentsMargins(margin, margin, margin, margin);
    grid->setVerticalSpacing(Theme::unit);
    grid->addItem(new QSpacerItem(leastWidth, 0), grid->rowCount(), 0, 1, grid->columnCount());
}

/// The roles only decide the places of the buttons, not what they answer.
static QMessageBox::ButtonRole roleOf(qsizetype index, qsizetype quiet)
{
    if (index == quiet)
        return QMessageBox::RejectRole;
    return index == 0 ? QMessageBox::AcceptRole : QMessageBox::DestructiveRole;
}

/// What the answer sets going may take a while; the box is not to be seen meanwhile.
static void clearScreen(QMessageBox &box)
{
    constexpr int untilRepainted = 40;
    box.hide();
    QEventLoop loop;
    QTimer::singleShot(untilRepainted, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

/// While a question waits the program does not work.
class PlainCursor
{
public:
    PlainCursor()
    {
        if (isNeeded)
            QApplication::setOverrideCursor(Qt::ArrowCursor);
    }
    ~PlainCursor()
    {
        if (isNeeded)
            QApplication::restoreOverrideCursor();
    }
    Q_DISABLE_COPY_MOVE(PlainCursor)

private:
    bool isNeeded = QGuiApplication::overrideCursor() != nullptr;
};

int MessageBoxPresenter::present(const AlertQuestion &question)
{
    const PlainCursor cursor;
    QMessageBox box(QApplication::activeWindow());
    box.setObjectName(u"alert"_s);
    fillWords(box, question);
    dress(box);
    widen(box);
    const QStringList titles =
        question.buttons.isEmpty() ? QStringList{localized(u"OK"_s)} : question.buttons;
    QList<QAbstractButton *> buttons;
    for (const QString &title : titles)
        buttons.append(box.addButton(title, roleOf(buttons.size(), quietButton(titles))));
    for (const int index : question.takingAway)
        ButtonLook::setTakesAway(*buttons.at(index));
    box.setDefaultButton(qobject_cast<QPushButton *>(buttons.first()));
    box.setEscapeButton(buttons.at(quietButton(titles)));
    box.exec();
    clearScreen(box);
    const qsizetype answer = buttons.indexOf(box.clickedButton());
    return Alert::firstButton + static_cast<int>(answer >= 0 ? answer : quietButton(titles));
}
