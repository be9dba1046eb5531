// Texts that somebody else has written are shown and passed on as texts.

#include "cloud/IcloudManager.h"
#include "records/DetailStack.h"
#include "records/DraftKeeper.h"
#include "records/Functional.h"
#include "shell/ApplicationBusObject.h"
#include "shell/Shell.h"
#include "shell/tasks/TaskDetailViewController.h"
#include "store/entities/EntityCategory.h"
#include "ui/support/ShellTest.h"
#include "widgets/GrowingTextField.h"
#include "widgets/MessageBoxPresenter.h"
#include "workspace/PlatformConfiguration.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTimer>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString markup = u"<b>bold</b><img src='file:///etc/passwd'>"_s;

class HostileTextsTest : public ShellTest
{
protected:
    HostileTextsTest()
    {
        Workspace::setUrlOpener([this](const QString &url) {
            opened.append(url);
            return true;
        });
    }
    ~HostileTextsTest() override { Workspace::setUrlOpener({}); }

    QStringList opened;
};

TEST_F(HostileTextsTest, MarkupIsShownAsItWasWritten)
{
    QList<Qt::TextFormat> formats;
    QTimer::singleShot(0, [&formats] {
        const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        for (const QLabel *label : box->findChildren<QLabel *>()) {
            if (label->text() == markup)
                formats.append(label->textFormat());
        }
        QApplication::activeModalWidget()->close();
    });
    MessageBoxPresenter().present({markup, markup, markup, {u"Continue"_s}});
    EXPECT_EQ(formats, (QList{Qt::PlainText, Qt::PlainText}));

    auto *label = new QLabel(markup, &window());
    label->ensurePolished();
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
    label->setTextFormat(Qt::RichText);
    label->ensurePolished();
    EXPECT_EQ(label->textFormat(), Qt::RichText) << "asked for";
}

TEST_F(HostileTextsTest, AnAddressIsOpenedOnlyByTheProgramsOfTheNet)
{
    for (const QString &url :
         {u"file:///etc/passwd"_s, u"/bin/sh"_s, u"javascript:alert(1)"_s, u"smb://host/x"_s, u"ssh://host"_s,
          u"data:text/html,x"_s, u"com.halvern.morvane:"_s, u""_s})
        EXPECT_FALSE(Workspace::openUrl(url)) << qPrintable(url);
    EXPECT_TRUE(opened.isEmpty());
    for (const QString &url :
         {u"HTTPS://example.org"_s, u"mailto:a@example.org"_s, u"tel:+491"_s, u"geo:1,2"_s, u"http://x"_s})
        EXPECT_TRUE(Workspace::openUrl(url)) << qPrintable(url);
}

TEST_F(HostileTextsTest, TheNameOfAPlaceStaysInsideOfItsQuery)
{
    const auto location = context().insert<EntityLocation>();
    location->setTitle(u"Café & Bar?q=x#y%0d"_s);
    Functional::openLocationWithEntityLocation(location);
    PlatformConfiguration().setText(u"mapPage"_s, u"https://maps.example.org/{query}/show"_s);
    Functional::openLocationWithEntityLocation(location);
    PlatformConfiguration().setText(u"mapPage"_s, u"file:///{query}"_s);
    Functional::openLocationWithEntityLocation(location);
    PlatformConfiguration().setText(u"mapPage"_s, {});
    const QString query = u"Caf%C3%A9%20%26%20Bar%3Fq%3Dx%23y%250d"_s;
    EXPECT_EQ(opened, (QStringList{u"https://www.openstreetmap.org/search?query="_s + query,
                                   u"https://maps.example.org/"_s + query + u"/show"_s}));
}

/// The texts that a calendar, another program or another device can bring.
QStringList hostileTexts()
{
    return {markup,
            u"../../../../tmp/x"_s,
            u"/etc/passwd"_s,
            u".."_s,
            u"CON.ics"_s,
            u"a&b R&D"_s,
            u"line\nline\r\n\tend"_s,
            u"nothing"_s + QChar(u'\0') + u"behind"_s,
            u"\u202Egnp.exe\u2066"_s,
            u"%1 %@ %n %s"_s,
            QString(20000, u'x')};
}

TEST_F(HostileTextsTest, AWordWithoutAnEndIsShownAboutAsSoonAsManyWords)
{
    const auto timeOf = [this](const QString &text) {
        const TaskPtr task = add(text, [&](MVTask &copy) { copy.details = text; });
        QElapsedTimer timer;
        timer.start();
        showList(SidebarItem::Inbox);
        screen().reloadData();
        controller().searchSelectItem(task);
        auto &pane = static_cast<TaskDetailViewController &>(*controller().detailStack()->top());
        window().grab();
        pane.setEditMode();
        window().grab();
        auto &field = find<GrowingTextField>(pane, "textFieldTitle");
        QTest::keyClick(&field, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(&field, Qt::Key_Exclam);
        window().grab();
        EXPECT_EQ(pane.taskForm()->currentTask().title, text + u'!');
        const qint64 taken = timer.elapsed();
        pane.dropEdit();
        context().deleteObject(task);
        EXPECT_FALSE(DBWorker::saveContext());
        return taken;
    };
    constexpr int length = 200000;
    const qint64 words = timeOf(u"letters "_s.repeated(length / 8).trimmed());
    EXPECT_LT(timeOf(QString(length, u'x')), 4 * words + 1000);
}

TEST_F(HostileTextsTest, GoThroughEveryDoorAsTexts)
{
    const QStringList texts = hostileTexts();
    const QDir data(qEnvironmentVariable("XDG_DATA_HOME") + u"/Morvane"_s);
    const auto tree = [&data] {
        QStringList names;
        QDirIterator files(data.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (files.hasNext())
            names << data.relativeFilePath(files.next());
        return names;
    };
    showList(SidebarItem::Inbox);
    for (const QString &text : texts) {
        SCOPED_TRACE(qPrintable(text.left(40)));
        const QString title = u"Ø"_s + text;
        const TaskPtr task = add(title, [&](MVTask &copy) {
            copy.calendarTitle = text;
            copy.allowsContentModifications = false;
        });
        const auto category = context().insert<EntityCategory>();
        category->setTitle(text);
        category->setIndex(6);
        EXPECT_FALSE(DBWorker::saveContext());
        screen().reloadData();

        // The row with its tip.
        const int row = static_cast<int>(shownTitles().indexOf(title));
        ASSERT_GE(row, 0);
        QHelpEvent help(QEvent::ToolTip, middleOf(row), list().viewport()->mapToGlobal(middleOf(row)));
        QCoreApplication::sendEvent(list().viewport(), &help);
        EXPECT_FALSE(QToolTip::text().contains(u"<b>"_s) || QToolTip::text().contains(u"<img"_s));
        EXPECT_LT(QToolTip::text().size(), 5000);
        QToolTip::hideText();

        // A message about it, which stays on the screen.
        clickRow(row);
        QSize box;
        QStringList shown;
        QTimer::singleShot(0, [&] {
            auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(alert, nullptr);
            box = alert->sizeHint();
            EXPECT_EQ(alert->textFormat(), Qt::PlainText);
            shown << alert->text() << alert->windowTitle();
            alert->close();
        });
        Alert::setPresenter(std::make_shared<MessageBoxPresenter>());
        key(Qt::Key_Delete);
        Alert::setPresenter(nullptr);
        ASSERT_FALSE(shown.isEmpty());
        EXPECT_TRUE(shown.front().contains(text.left(20)));
        EXPECT_EQ(shown.back(), u"Morvane"_s);
        EXPECT_LT(box.width(), 1000);
        EXPECT_LT(box.height(), 1000);

        // The menu of the row: what stands there is the title, and no letter of it is a key.
        QContextMenuEvent event(QContextMenuEvent::Mouse, middleOf(row),
                                list().viewport()->mapToGlobal(middleOf(row)));
        QCoreApplication::sendEvent(list().viewport(), &event);
        auto &menu = find<QMenu>(screen(), "taskPopupMenu");
        const auto entries = menu.actions().front()->menu()->actions();
        EXPECT_TRUE(std::ranges::any_of(entries, [&text](const QAction *action) {
            return action->text().replace(u"&&"_s, u"&"_s) == text &&
                   QKeySequence::mnemonic(action->text()).isEmpty();
        }));
        menu.close();

        // The files that are made for it.
        const QStringList before = tree();
        WindowNewTask &unsaved = openNewTask();
        unsaved.taskForm()->setTitle(text);
        shell->commitEditing();
        const QStringList files = QDir(Drafts::folder()).entryList(QDir::Files);
        ASSERT_EQ(files.size(), 1);
        static const QRegularExpression plain(u"^[0-9a-f-]{36}[.]draft$"_s);
        EXPECT_TRUE(plain.match(files.front()).hasMatch()) << qPrintable(files.front());
        QStringList after = tree();
        after.removeAll(u"Drafts"_s);
        after.removeAll(u"Drafts/"_s + files.front());
        QStringList expected = before;
        expected.removeAll(u"Drafts"_s);
        EXPECT_EQ(after, expected);
        const auto found = Drafts::read(Drafts::folder() + u'/' + files.front());
        ASSERT_TRUE(found);
        EXPECT_EQ(found->draft.edited.title, text);
        const ScriptedAlerts discard({Alert::thirdButton});
        unsaved.close();
        EXPECT_TRUE(IcloudManager::imageData(text).isEmpty());

        // A call of another program says nothing but that the window is wanted.
        ApplicationBusObject bus;
        QSignalSpy activated(&bus, &ApplicationBusObject::activated);
        QSignalSpy actions(&bus, &ApplicationBusObject::actionActivated);
        bus.Open({text}, {{text, text}});
        EXPECT_EQ(activated.size(), 1);
        // The name of an action goes on as it is; nobody knows this one.
        bus.ActivateAction(text, {text}, {});
        EXPECT_EQ(actions.size(), 1);
        EXPECT_EQ(actions.front().front().toString(), text);
        delegate->userNotificationCenterDidActivateNotification(text);

        context().deleteObject(task);
        context().deleteObject(category);
        EXPECT_FALSE(DBWorker::saveContext());
    }
    EXPECT_TRUE(opened.isEmpty());
}

} // namespace
