// The devices of the user, and the folder that they share and seal.

#include "replication/ReplicaFolder.h"
#include "shell/devices/DeviceRow.h"
#include "shell/devices/DevicesWindow.h"
#include "shell/devices/PassphraseDialog.h"
#include "ui/support/Reader.h"
#include "ui/support/ShellTest.h"
#include "widgets/FormScroll.h"
#include "workspace/PlatformConfiguration.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

#ifdef MORVANE_SEALING_LIBRARY

namespace {

/// Set before the program starts, which looks once for the folder.
class WithFolder
{
protected:
    WithFolder()
    {
        PlatformConfiguration::setText(u"cloudFolder"_s, shared.path());
        Replication::setSealingLibrary(QStringLiteral(MORVANE_SEALING_LIBRARY));
    }
    ~WithFolder()
    {
        PlatformConfiguration::setText(u"cloudFolder"_s, {});
        QFile::remove(keptKey());
        Replication::setSealingLibrary({});
    }
    static QString keptKey() { return qEnvironmentVariable("XDG_CONFIG_HOME") + u"/Morvane/sealing.key"_s; }

    QTemporaryDir shared;
};

class DevicesTest : public WithFolder, public ShellTest
{
protected:
    PassphraseDialog &openDialog(const char *button)
    {
        QTest::mouseClick(&find<QPushButton>(devices, button), Qt::LeftButton);
        auto *dialog = devices.findChild<PassphraseDialog *>();
        EXPECT_NE(dialog, nullptr);
        return *dialog;
    }
    static void type(QDialog &dialog, const char *field, const QString &text)
    {
        auto &line = find<QLineEdit>(dialog, field);
        line.selectAll();
        QTest::keyClicks(&line, text);
    }
    static void press(QDialog &dialog)
    {
        QTest::mouseClick(&find<QPushButton>(dialog, "buttonDone"), Qt::LeftButton);
    }
    static QString wrongIn(QDialog &dialog)
    {
        auto &label = find<QLabel>(dialog, "labelWrong");
        return label.isVisibleTo(&dialog) ? label.text() : QString();
    }
    bool offers(const char *button) { return find<QPushButton>(devices, button).isVisibleTo(&devices); }
    static QStringList keyFiles()
    {
        return QDir(Replication::contentFolder()).entryList({u"key*"_s}, QDir::Files);
    }
    /// A device of which one save has come, which changed nothing.
    static void arrive(int number, const QString &name, Seconds ahead)
    {
        const auto wall = qint64((Clock::now() + ahead).unixSeconds() * 1000.0);
        const QByteArray id = QByteArray::number(number).rightJustified(16, '0');
        const replication::ChangeFile save{
            .schema = 1, .dot = {id, 1}, .time = wall << 16, .wall = wall, .deviceName = name};
        EXPECT_FALSE(
            replication::ReplicaFolder(Replication::contentFolder()).write(save.dot, save.toBytes()));
    }
    QList<DeviceRow *> rows() const
    {
        QList<DeviceRow *> shown = devices.findChildren<DeviceRow *>();
        shown.removeIf([](const DeviceRow *row) { return row->isHidden(); });
        return shown;
    }
    /// By all of its name.
    DeviceRow *rowOf(const QString &name) const
    {
        for (DeviceRow *row : rows()) {
            if (find<QLabel>(*row, "labelTitle").accessibleName() == name)
                return row;
        }
        return nullptr;
    }
    bool hasKey() const { return QFile::exists(Replication::contentFolder() + u"/key"_s); }
    void closeDialogs()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(devices.findChild<PassphraseDialog *>(), nullptr);
    }

    DevicesWindow &devices = [this]() -> DevicesWindow & {
        auto *made = new DevicesWindow(&window());
        made->show();
        return *made;
    }();
};

} // namespace

TEST_F(DevicesTest, ANewPassphraseIsTypedTwiceAndAWrongOneIsToldOfAtOnce)
{
    EXPECT_TRUE(offers("buttonSeal"));
    EXPECT_FALSE(offers("buttonEnterPassphrase"));
    {
        PassphraseDialog &dialog = openDialog("buttonSeal");
        EXPECT_FALSE(find<QPushButton>(dialog, "buttonDone").isEnabled());
        QTest::keyClick(&find<QLineEdit>(dialog, "fieldPassphrase"), Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible()) << "Return gives nothing up";
        EXPECT_EQ(find<QLineEdit>(dialog, "fieldPassphrase").echoMode(), QLineEdit::Password);
        type(dialog, "fieldPassphrase", u"short"_s);
        type(dialog, "fieldPassphraseAgain", u"short"_s);
        press(dialog);
        EXPECT_EQ(wrongIn(dialog), u"The passphrase needs at least 8 letters."_s);
        type(dialog, "fieldPassphrase", u"seven seals"_s);
        EXPECT_EQ(wrongIn(dialog), QString());
        type(dialog, "fieldPassphraseAgain", u"seven seels"_s);
        press(dialog);
        EXPECT_EQ(wrongIn(dialog), u"The two are not the same."_s);
        EXPECT_FALSE(hasKey());
        type(dialog, "fieldPassphraseAgain", u"seven seals"_s);
        QTest::keyClick(&find<QLineEdit>(dialog, "fieldPassphraseAgain"), Qt::Key_Return);
    }
    closeDialogs();
    EXPECT_TRUE(hasKey());
    EXPECT_FALSE(offers("buttonSeal"));
    EXPECT_TRUE(find<QLabel>(devices, "labelSealing").text().startsWith(u"The folder is sealed."_s));

    // As on a computer that does not have the key.
    ASSERT_TRUE(QFile::remove(keptKey()));
    AppDelegate::shared()->replication()->look();
    EXPECT_TRUE(QTest::qWaitFor([this] { return offers("buttonEnterPassphrase"); }));
    EXPECT_TRUE(find<QLabel>(devices, "labelSummary").text().startsWith(u"Nothing goes out or comes in."_s));
    auto &notice = find<QAbstractButton>(window(), "sharingNotice");
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice.isVisible(); })) << "The window says so, too";
    EXPECT_TRUE(notice.accessibleDescription().startsWith(u"Nothing goes out or comes in."_s));
    {
        PassphraseDialog &dialog = openDialog("buttonEnterPassphrase");
        EXPECT_EQ(dialog.findChild<QLineEdit *>(u"fieldPassphraseAgain"_s), nullptr);
        type(dialog, "fieldPassphrase", u"seven seels"_s);
        press(dialog);
        EXPECT_EQ(wrongIn(dialog), u"This is not the passphrase of the folder."_s);
        type(dialog, "fieldPassphrase", u"seven seals"_s);
        press(dialog);
    }
    closeDialogs();
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice.isHidden(); }));
    EXPECT_FALSE(offers("buttonEnterPassphrase"));
    EXPECT_TRUE(find<QLabel>(devices, "labelSealing").text().startsWith(u"The folder is sealed."_s));
}

TEST_F(DevicesTest, ThePassphraseIsChangedAndTheSealingEnded)
{
    EXPECT_FALSE(offers("buttonChangePassphrase") || offers("buttonEndSealing")) << "There is none yet";
    const auto typeTwice = [](QDialog &dialog, const QString &passphrase) {
        type(dialog, "fieldPassphrase", passphrase);
        type(dialog, "fieldPassphraseAgain", passphrase);
        press(dialog);
    };
    typeTwice(openDialog("buttonSeal"), u"seven seals"_s);
    closeDialogs();
    EXPECT_TRUE(offers("buttonChangePassphrase") && offers("buttonEndSealing"));
    EXPECT_FALSE(offers("buttonSeal"));
    typeTwice(openDialog("buttonChangePassphrase"), u"seven other seals"_s);
    closeDialogs();
    EXPECT_EQ(keyFiles().size(), 2);
    // As on a computer that was away: the new one is needed there.
    ASSERT_TRUE(QFile::remove(keptKey()));
    AppDelegate::shared()->replication()->look();
    ASSERT_TRUE(QTest::qWaitFor([this] { return offers("buttonEnterPassphrase"); }));
    EXPECT_FALSE(offers("buttonChangePassphrase") || offers("buttonEndSealing"));
    {
        PassphraseDialog &dialog = openDialog("buttonEnterPassphrase");
        type(dialog, "fieldPassphrase", u"seven seals"_s);
        press(dialog);
        EXPECT_EQ(wrongIn(dialog), u"This is not the passphrase of the folder."_s);
        type(dialog, "fieldPassphrase", u"seven other seals"_s);
        press(dialog);
    }
    closeDialogs();
    {
        const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
        QTest::mouseClick(&find<QPushButton>(devices, "buttonEndSealing"), Qt::LeftButton);
        EXPECT_EQ(keyFiles().size(), 2) << "Asked, and left as it is";
        QTest::mouseClick(&find<QPushButton>(devices, "buttonEndSealing"), Qt::LeftButton);
    }
    EXPECT_TRUE(keyFiles().contains(u"key-3-open"_s));
    EXPECT_TRUE(offers("buttonSeal"));
    EXPECT_FALSE(offers("buttonEndSealing"));
    EXPECT_TRUE(find<QLabel>(devices, "labelSealing").text().startsWith(u"The folder is open"_s));
}

TEST_F(DevicesTest, TheWindowGrowsWithWhatItSaysUnlessTheUserChoseItsSize)
{
    const auto &bar = *devices.findChild<FormScroll *>()->verticalScrollBar();
    const auto comes = [&](int number) {
        arrive(number, u"Device %1"_s.arg(number), Seconds(3.0 * 86400));
        AppDelegate::shared()->replication()->look();
        ASSERT_TRUE(QTest::qWaitFor([&] { return rows().size() == number + 1; }));
        QCoreApplication::processEvents();
    };
    QCoreApplication::processEvents();
    ASSERT_EQ(bar.maximum(), 0);
    const int before = devices.height();
    comes(1);
    EXPECT_EQ(bar.maximum(), 0);
    EXPECT_GT(devices.height(), before);
    const QSize chosen(devices.width() + 10, before);
    devices.resize(chosen);
    comes(2);
    EXPECT_EQ(devices.size(), chosen);
}

TEST_F(DevicesTest, ThirtyDevicesAreScrolledReadOutAndRemoved)
{
    const Reader reader;
    const QString longName = u"The computer in the study on the second floor, behind the door with the "
                             "small window that nobody ever opens"_s;
    for (int number = 1; number <= 30; ++number)
        arrive(number, number == 7 ? longName : u"Device %1"_s.arg(number),
               number == 5 ? Seconds(3.0 * 86400) : Seconds(0));
    AppDelegate::shared()->replication()->look();
    ASSERT_TRUE(QTest::qWaitFor([this] { return rows().size() == 31; }));
    QCoreApplication::processEvents();

    // All of them are in a window that fits the screen.
    EXPECT_LE(devices.height(), devices.screen()->availableGeometry().height());
    QScrollBar &bar = *devices.findChild<FormScroll *>()->verticalScrollBar();
    const auto &scroll = *devices.findChild<FormScroll *>();
    EXPECT_LE(scroll.widget()->width(), scroll.viewport()->width()) << "Nothing is cut at the side";
    ASSERT_GT(bar.maximum(), 0);
    EXPECT_EQ(bar.value(), 0);
    QTest::keyClick(&devices, Qt::Key_PageDown);
    EXPECT_GT(bar.value(), 0);
    rowOf(u"Device 1"_s)->findChild<QPushButton *>()->setFocus();
    QCoreApplication::processEvents();

    // A long name is cut, and its tip says all of it.
    const DeviceRow *cut = rowOf(longName);
    ASSERT_NE(cut, nullptr);
    const auto &title = find<QLabel>(*cut, "labelTitle");
    EXPECT_TRUE(title.text().endsWith(u'…'));
    EXPECT_LE(title.fontMetrics().horizontalAdvance(title.text()), title.width());
    EXPECT_EQ(title.toolTip(), longName);
    EXPECT_EQ(find<QLabel>(*rowOf(u"Device 1"_s), "labelTitle").toolTip(), QString());

    // One clock is far off.
    for (const DeviceRow *row : rows()) {
        const bool isFast = row == rowOf(u"Device 5"_s);
        EXPECT_EQ(find<QLabel>(*row, "labelDetail").text().contains(u"its clock is ahead"_s), isFast);
    }

    // A screen reader hears of each, and of its button.
    EXPECT_EQ(Reader::faultsIn(Reader::of(devices)), QStringList());
    for (int number = 1; number <= 30; ++number) {
        const QString name = number == 7 ? longName : u"Device %1"_s.arg(number);
        QAccessibleInterface *row = Reader::find(devices, QAccessible::ListItem, name);
        ASSERT_NE(row, nullptr) << number;
        EXPECT_TRUE(row->text(QAccessible::Description).startsWith(u"Last change"_s));
        EXPECT_NE(Reader::find(devices, QAccessible::Button, u"Remove "_s + name), nullptr);
    }
    EXPECT_FALSE(find<QPushButton>(*rows().front(), "buttonRemove").isVisible()) << "This computer stays";

    // One is removed, after the question.
    const auto pressRemove = [&] {
        QPushButton &button = find<QPushButton>(*rowOf(u"Device 12"_s), "buttonRemove");
        button.setFocus();
        QTest::mouseClick(&button, Qt::LeftButton);
    };
    {
        const ScriptedAlerts alerts({Alert::secondButton, Alert::firstButton});
        pressRemove();
        EXPECT_EQ(alerts.asked().back().message, u"Remove Device 12 from your devices?"_s);
        EXPECT_EQ(rows().size(), 31);
        pressRemove();
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return rows().size() == 30; }));
    EXPECT_EQ(rowOf(u"Device 12"_s), nullptr);
}

#endif
