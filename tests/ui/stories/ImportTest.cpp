// Contacts of address books and files are imported.

#include "cloud/FileManager.h"
#include "contacts/CNContactStore.h"
#include "shell/contactimport/ImportContactWindowController.h"
#include "store/entities/EntityContactGroup.h"
#include "ui/support/ShellTest.h"
#include "widgets/CheckList.h"
#include "widgets/PngPicture.h"
#include "widgets/PopUpButton.h"
#include "widgets/ProgressSign.h"
#include "workspace/PlatformConfiguration.h"

#include <QBuffer>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray card(const QByteArray &lines)
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "\r\nEND:VCARD\r\n";
}

/// Two address books, of which one does not work.
class Books : public ContactBackend
{
public:
    Result<std::vector<CNContainer>> containers() override
    {
        return std::vector<CNContainer>{{u"f"_s, u"Friends"_s}, {u"o"_s, u"Office"_s}};
    }
    Result<std::vector<QByteArray>> cards(const CNContainer &container) override
    {
        if (container.name == u"Office"_s)
            return Error{u"contacts"_s, 0, u"Cannot read the address book \"Office\": it burns"_s};
        return std::vector<QByteArray>{card("N:Lee;Ann;;;\r\nORG:Works"),
                                       card("N:Kay;Bob;;;\r\nTEL;TYPE=CELL:1"),
                                       card("FN:Works\r\nORG:Works")};
    }
};

class ImportTest : public ShellTest
{
protected:
    ImportTest()
    {
        CNContactStore::setBackendSource([] { return std::make_shared<Books>(); });
        allow(3);
    }
    ~ImportTest() override
    {
        if (auto *open = importWindow())
            open->close();
        CNContactStore::setBackendSource({});
        CNContactStore::setAccessQuestion({});
        allow(0);
    }
    /// As the button of a screen's tool bar does.
    void openFromToolBar()
    {
        showList(SidebarItem::Today);
        Q_EMIT screen().buttonAdd(ToolBarButton::ImportContacts);
    }
    static void allow(int status) { PlatformConfiguration::setAuthorization(u"contacts"_s, status); }
    ImportContactWindowController *importWindow()
    {
        return window().findChild<ImportContactWindowController *>();
    }
    CheckList &table() { return find<CheckList>(*importWindow(), "tableContacts"); }
    QString state() { return find<QLabel>(*importWindow(), "labelState").text(); }
    /// The lines as they are shown, "x" for a mark.
    QStringList lines()
    {
        QStringList texts;
        for (int line = 0; line < table().lineCount(); ++line)
            texts.append((table().isMarked(line) ? u"x"_s : QString()) + table().textOf(line));
        return texts;
    }
    bool hasLines(const QStringList &wanted)
    {
        return QTest::qWaitFor([&] { return lines() == wanted; });
    }
    void press(const char *button)
    {
        QTest::mouseClick(&find<QPushButton>(*importWindow(), button), Qt::LeftButton);
    }
    void pressLine(int line)
    {
        table().setCurrentIndex(table().model()->index(line, 0));
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {},
                          table().visualRect(table().model()->index(line, 0)).center());
    }
    /// Presses Import and waits for the words at the end.
    void importMarked(const ScriptedAlerts &alerts)
    {
        press("buttonSave");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !alerts.asked().empty() && !importWindow(); }));
    }
    static int contactCount() { return EntityContacts::contacts().size(); }
    QString write(const QString &name, const QByteArray &bytes)
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return file.fileName();
    }

    QTemporaryDir folder;
};

TEST_F(ImportTest, AnAddressBookIsImportedAndTakenBack)
{
    openFromToolBar();
    ASSERT_TRUE(importWindow());
    EXPECT_EQ(importWindow()->windowTitle(), u"Import contacts"_s);
    ASSERT_TRUE(hasLines({u"A"_s, u"Ann Lee"_s, u"B"_s, u"Bob Kay"_s, u"W"_s, u"Works"_s}));
    auto &sources = find<PopUpButton>(*importWindow(), "popUpSources");
    EXPECT_EQ(sources.itemText(0) + sources.itemText(1) + sources.itemText(2),
              u"All address booksFriendsOffice"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return state().contains(u"it burns"_s); }))
        << "one that fails hides no other";
    EXPECT_FALSE(find<QPushButton>(*importWindow(), "buttonSave").isEnabled());
    press("buttonMarkAll");
    EXPECT_EQ(lines(), (QStringList{u"A"_s, u"xAnn Lee"_s, u"B"_s, u"xBob Kay"_s, u"W"_s, u"xWorks"_s}));
    EXPECT_EQ(find<QPushButton>(*importWindow(), "buttonMarkAll").text(), u"Unmark all"_s);
    pressLine(3);
    EXPECT_FALSE(table().isMarked(3));
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        importMarked(alerts);
        EXPECT_EQ(alerts.asked().at(0).message, u"1 contact was imported."_s);
    }
    ASSERT_EQ(contactCount(), 1);
    EXPECT_EQ(EntityContacts::contacts().first()->company()->title(), u"Works"_s);

    openFromToolBar();
    ASSERT_TRUE(hasLines({u"A"_s, u"xAnn Lee"_s, u"B"_s, u"Bob Kay"_s, u"W"_s, u"xWorks"_s}))
        << "ticked as already there";
    pressLine(1);
    EXPECT_TRUE(table().isMarked(1)) << "and no press changes that";
    EXPECT_TRUE(find<QPushButton>(*importWindow(), "buttonMarkAll").isEnabled());
    QTest::keyClicks(&find<QLineEdit>(*importWindow(), "fieldSearch"), u"ann"_s);
    EXPECT_FALSE(find<QPushButton>(*importWindow(), "buttonMarkAll").isEnabled())
        << "there is nothing to mark";
    find<QLineEdit>(*importWindow(), "fieldSearch").clear();
    QTest::keyClicks(&find<QLineEdit>(*importWindow(), "fieldSearch"), u"kAY"_s);
    EXPECT_EQ(lines(), QStringList(u"Bob Kay"_s)) << "without letters";
    QTest::keyClick(&find<QLineEdit>(*importWindow(), "fieldSearch"), Qt::Key_Down);
    QTest::keyClick(&table(), Qt::Key_Space);
    EXPECT_TRUE(table().isMarked(0));
    QTest::keyClick(importWindow(), Qt::Key_Escape);
    settle();
    EXPECT_FALSE(importWindow());
    run(ActionId::Undo);
    EXPECT_EQ(contactCount(), 0);
}

TEST_F(ImportTest, FilesAreOpenedDroppedAndImportedWithPictures)
{
    QImage image(4, 3, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(image.save(&buffer, "JPG"));
    const QString one =
        write(u"one.vcf"_s, card("N:;Cid;;;\r\nPHOTO;ENCODING=b:" + jpeg.toBase64()) + card("TEL:1"));
    const QString two =
        write(u"two.vcf"_s, card("N:;Dan;;;\r\nPHOTO;ENCODING=b:" + QByteArray("no picture").toBase64()));
    allow(0);
    int asked = 0;
    CNContactStore::setAccessQuestion([&](const std::function<void(bool)> &answer) {
        ++asked;
        answer(false);
    });
    ImportContactWindowController::openFiles(&window(), {one});
    ASSERT_TRUE(hasLines({u"C"_s, u"xCid"_s}))
        << "what was opened is marked, whatever the answer about address books is";
    EXPECT_TRUE(QTest::qWaitFor([&] { return asked == 1; }));
    EXPECT_TRUE(state().contains(u"The card in line 6 of \"one.vcf\" has no name."_s)) << qPrintable(state());
    press("buttonOpen");
    auto *dialog = importWindow()->findChild<QFileDialog *>();
    ASSERT_TRUE(dialog);
    Q_EMIT dialog->filesSelected({one, two});
    dialog->reject();
    ASSERT_TRUE(hasLines({u"C"_s, u"xCid"_s, u"D"_s, u"xDan"_s}));

    QMimeData data;
    data.setUrls(
        {QUrl::fromLocalFile(two), QUrl::fromLocalFile(u"/etc/hostname"_s), QUrl(u"https://b.org/c.vcf"_s)});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(importWindow(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(importWindow(), &drop);
    ASSERT_TRUE(hasLines({u"D"_s, u"xDan"_s}));
    QMimeData other;
    other.setUrls({QUrl::fromLocalFile(u"/etc/hostname"_s)});
    EXPECT_TRUE(ImportContactWindowController::filesIn(other).isEmpty());

    // Marks of a source stay while others are shown.
    auto &sources = find<PopUpButton>(*importWindow(), "popUpSources");
    EXPECT_EQ(sources.itemText(1), u"2 files"_s);
    Q_EMIT sources.activated(1);
    ASSERT_TRUE(hasLines({u"C"_s, u"xCid"_s, u"D"_s, u"xDan"_s}));
    pressLine(1);
    Q_EMIT sources.activated(0);
    ASSERT_TRUE(hasLines({u"C"_s, u"xCid"_s}));
    Q_EMIT sources.activated(1);
    ASSERT_TRUE(hasLines({u"C"_s, u"Cid"_s, u"D"_s, u"xDan"_s}));
    pressLine(1);
    const ScriptedAlerts alerts({Alert::firstButton});
    importMarked(alerts);
    EXPECT_EQ(alerts.asked().at(0).message, u"2 contacts were imported."_s);
    EXPECT_TRUE(alerts.asked().at(0).informativeText.contains(u"Dan"_s)) << "whose picture is none";
    const ContactPtr cid = EntityContacts::firstName(u"Cid"_s, u""_s);
    ASSERT_TRUE(cid);
    EXPECT_EQ(QImage(FileManager::imageFolderURL() + u'/' + cid->photoName()).size(), QSize(4, 3));
}

TEST_F(ImportTest, CardsOfEitherEndingOpenTheWindowThatGoesWithTheMainOne)
{
    const QString file = write(u"one.VCARD"_s, card("N:;Cid;;;"));
    allow(0);
    CNContactStore::setAccessQuestion([](const std::function<void(bool)> &answer) { answer(false); });
    showList(SidebarItem::Inbox);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window(), &drop);
    ASSERT_TRUE(QTest::qWaitFor([this] { return importWindow() != nullptr; }));
    ASSERT_TRUE(hasLines({u"C"_s, u"xCid"_s}));
    EXPECT_TRUE(controller().closeNewWindows());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !importWindow(); }));
}

TEST_F(ImportTest, WhoComesInWhileAGroupIsShownJoinsIt)
{
    const auto group = addGroup(u"Choir"_s);
    const auto present = context().insert<EntityContacts>();
    present->setFirstName(u"Hal"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    const auto members = [&] {
        QStringList names;
        for (const ContactPtr &one : group->contacts())
            names << one->firstName();
        names.sort();
        return names.join(u' ');
    };
    const auto importByDrop = [&](const QByteArray &name) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(
            write(QString::fromLatin1(name) + u".vcf"_s, card("N:;" + name + ";;;") + card("N:;Hal;;;")))});
        QWidget *target = controller().currentScreen();
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &enter);
        QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &drop);
        ASSERT_TRUE(QTest::qWaitFor([this] {
            return importWindow() && find<QPushButton>(*importWindow(), "buttonSave").isEnabled();
        }));
        const ScriptedAlerts alerts({Alert::firstButton});
        importMarked(alerts);
        settle();
    };
    const auto showGroup = [&] {
        outline().selectIndex(sidebar().indexOfGroup(*group));
        settle();
    };
    showGroup();
    importByDrop("Dora");
    EXPECT_EQ(members(), u"Dora"_s) << "and not Hal, who is there already";
    Q_EMIT controller().currentScreen()->buttonAdd(ToolBarButton::ImportContacts);
    ASSERT_TRUE(hasLines({u"A"_s, u"Ann Lee"_s, u"B"_s, u"Bob Kay"_s, u"W"_s, u"Works"_s}));
    pressLine(1);
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        importMarked(alerts);
    }
    EXPECT_EQ(members(), u"Ann Dora"_s);
    run(ActionId::Undo);
    EXPECT_EQ(members(), u"Dora"_s);
    // What is opened elsewhere, and who is on a list, has nothing to do with it.
    controller().goToList(SidebarItem::People);
    settle();
    importByDrop("Eva");
    group->setUseGeneralFilter(true);
    ASSERT_FALSE(DBWorker::saveContext());
    showGroup();
    importByDrop("Fay");
    EXPECT_EQ(members(), u"Dora"_s);
    EXPECT_EQ(contactCount(), 4);
}

TEST_F(ImportTest, CalendarFilesThatAreDroppedOrChosenBecomeTasks)
{
    const QString file = write(u"trip.ics"_s, "BEGIN:VCALENDAR\r\nBEGIN:VTODO\r\nUID:1\r\nSUMMARY:Pack\r\n"
                                              "END:VTODO\r\nBEGIN:VTODO\r\nUID:2\r\nSUMM");
    showList(SidebarItem::Inbox);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file), QUrl::fromLocalFile(u"/etc/hostname"_s)});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &drop);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !alerts.asked().empty(); }));
        EXPECT_EQ(alerts.asked().at(0).message, u"1 entry was imported."_s);
        EXPECT_TRUE(alerts.asked().at(0).informativeText.contains(u"line 6 of \"trip.ics\" is cut off"_s))
            << alerts.asked().at(0).informativeText.toStdString();
    }
    settle();
    const auto tasks = [this] { return context().count(EntityTask::fetchRequest()); };
    EXPECT_EQ(tasks(), 1);
    run(ActionId::Import);
    auto *dialog = window().findChild<QFileDialog *>();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(find<QLineEdit>(*dialog, "fileNameEdit").text(), QString())
        << "a folder that is not there is no file";
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        Q_EMIT dialog->filesSelected({file});
        EXPECT_EQ(alerts.asked().at(0).message, u"Nothing new was imported."_s);
    }
    dialog->reject();
    run(ActionId::Undo);
    settle();
    EXPECT_EQ(tasks(), 0);
}

TEST_F(ImportTest, TablesAreTakenByWhatTheyHold)
{
    const QString tasks = write(u"tasks.csv"_s, "Task;Due;Size\nPack;24.11.2026;9\nCall;soon;\n");
    const QString people = write(u"people.csv"_s, "First Name,Last Name\nDan,Kay\n");
    const QString other = write(u"other.csv"_s, "colour\nred\n");
    allow(3);
    showList(SidebarItem::Inbox);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(tasks), QUrl::fromLocalFile(people), QUrl::fromLocalFile(other)});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &drop);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !alerts.asked().empty(); }));
        EXPECT_EQ(alerts.asked().at(0).message, u"2 entries were imported."_s);
        const QString details = alerts.asked().at(0).informativeText;
        for (const QString &part : {u"\"soon\" in line 3"_s, u"stand in notes: Size."_s,
                                    u"\"other.csv\" is no table of tasks, projects or notes."_s})
            EXPECT_TRUE(details.contains(part)) << qPrintable(details);
    }
    ASSERT_TRUE(importWindow());
    EXPECT_TRUE(QTest::qWaitFor([&] { return lines().contains(u"xDan Kay"_s); }));
    importWindow()->close();
    settle();
    EXPECT_EQ(context().count(EntityTask::fetchRequest()), 2);
    run(ActionId::Undo);
    EXPECT_EQ(context().count(EntityTask::fetchRequest()), 0);
}

TEST_F(ImportTest, WithoutAccessItLeadsToThePreferences)
{
    int asked = 0;
    CNContactStore::setAccessQuestion([&](const std::function<void(bool)> &answer) {
        ++asked;
        answer(false);
    });
    allow(0);
    openFromToolBar();
    auto &pane = find<QWidget>(*importWindow(), "paneNoAccess");
    ASSERT_TRUE(QTest::qWaitFor([&] { return pane.isVisible(); }));
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(table().isVisible());
    press("buttonPreferences");
    settle();
    EXPECT_FALSE(importWindow());
    auto *preferences = window().findChild<QWidget *>(u"PreferencesWindow"_s);
    if (!preferences)
        preferences = QApplication::activeWindow();
    ASSERT_TRUE(preferences && preferences != &window());
    preferences->close();

    openFromToolBar();
    ASSERT_TRUE(QTest::qWaitFor([&] { return find<QWidget>(*importWindow(), "paneNoAccess").isVisible(); }));
    allow(3);
    QEvent back(QEvent::ActivationChange);
    importWindow()->activateWindow();
    QCoreApplication::sendEvent(importWindow(), &back);
    EXPECT_TRUE(hasLines({u"A"_s, u"Ann Lee"_s, u"B"_s, u"Bob Kay"_s, u"W"_s, u"Works"_s}))
        << "what was allowed meanwhile";
    EXPECT_EQ(asked, 1);
}

TEST_F(ImportTest, TenThousandContactsAreReadShownAndStopped)
{
    QByteArray text;
    for (int number = 0; number < 10'000; ++number)
        text += card("N:Lee " + QByteArray::number(number) + ";Ann;;;\r\nTEL;TYPE=CELL:1");
    const QString file = write(u"many.vcf"_s, text);
    ImportContactWindowController::openFiles(&window(), {file});
    QElapsedTimer pause;
    qint64 longest = 0;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            longest = std::max(longest, pause.isValid() ? pause.elapsed() : 0);
            pause.start();
            return table().lineCount() == 10'001;
        },
        60'000));
    EXPECT_LT(longest, 1'000) << "the window answers while it reads";
    const ScriptedAlerts alerts({Alert::firstButton});
    QTimer stopping;
    QObject::connect(&stopping, &QTimer::timeout, [] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *sign = qobject_cast<ProgressSign *>(widget); sign && sign->isVisible())
                QTest::mouseClick(sign->findChild<QPushButton *>(), Qt::LeftButton);
        }
    });
    stopping.start(20);
    press("buttonSave");
    EXPECT_TRUE(importWindow()->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !importWindow(); }, 60'000));
    EXPECT_GT(contactCount(), 0);
    EXPECT_LT(contactCount(), 10'000);
    EXPECT_TRUE(alerts.asked().at(0).informativeText.contains(u"The import was stopped"_s));
    run(ActionId::Undo);
    EXPECT_EQ(contactCount(), 0) << "one step";
}

TEST_F(ImportTest, PicturesBecomeUprightPngsOfSensibleSize)
{
    const auto encoded = [](const QImage &image, const char *format) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        EXPECT_TRUE(image.save(&buffer, format));
        return bytes;
    };
    QImage image(5, 3, QImage::Format_RGB32);
    image.fill(Qt::blue);
    const QByteArray png = encoded(image, "PNG");
    EXPECT_EQ(pngPictureOf(png), png) << "stays as it is";
    EXPECT_EQ(QImage::fromData(pngPictureOf(encoded(image, "BMP")), "PNG").size(), QSize(5, 3));
    const QByteArray large = pngPictureOf(encoded(image.scaled(6000, 3000), "PNG"));
    EXPECT_EQ(QImage::fromData(large).size(), QSize(2048, 1024));
    for (const QByteArray &none : {QByteArray(), QByteArray("text"), png.left(40),
                                   QByteArray("<svg xmlns='http://www.w3.org/2000/svg'/>")})
        EXPECT_EQ(pngPictureOf(none), QByteArray()) << none.constData();
}

} // namespace
