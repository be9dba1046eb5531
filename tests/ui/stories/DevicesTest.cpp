// The folder that several devices share is sealed.

#include "shell/devices/DevicesWindow.h"
#include "shell/devices/PassphraseDialog.h"
#include "ui/support/ShellTest.h"
#include "workspace/PlatformConfiguration.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
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
    EXPECT_FALSE(offers("buttonEnterPassphrase"));
    EXPECT_TRUE(find<QLabel>(devices, "labelSealing").text().startsWith(u"The folder is sealed."_s));
}

#endif
