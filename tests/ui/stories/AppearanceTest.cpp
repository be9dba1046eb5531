// The look of the program changes while it is used.

#include "widgets/Appearance.h"
#include "foundation/UserDefaults.h"
#include "ui/support/ShellTest.h"
#include "widgets/LookOfProgram.h"

#include <QLabel>
#include <QRadioButton>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;

namespace {

class AppearanceTest : public ShellTest
{
protected:
    ~AppearanceTest() override
    {
        for (const char *key : {"appearanceScheme", "appearanceContrast"})
            UserDefaults::standard().removeObject(QString::fromLatin1(key));
        LookOfProgram::showRemembered();
    }
    void choose(const char *button)
    {
        QTest::mouseClick(&find<QRadioButton>(*preferences(), button), Qt::LeftButton);
    }
    QWidget *preferences()
    {
        run(ActionId::Preferences);
        for (QWidget *shown : QApplication::topLevelWidgets())
            if (shown->objectName() == u"PreferencesWindow"_s && shown->isVisible())
                return shown;
        return nullptr;
    }
    /// The colour that most of a widget has on the screen.
    static QColor groundOf(QWidget &widget)
    {
        const QImage image = widget.grab().toImage();
        std::map<QRgb, int> counts;
        for (int x = 0; x < image.width(); x += 3)
            for (int y = 0; y < image.height(); y += 3)
                ++counts[image.pixel(x, y)];
        return QColor(std::ranges::max_element(counts, {}, &std::pair<const QRgb, int>::second)->first);
    }
};

} // namespace

TEST_F(AppearanceTest, TheChoiceInThePreferencesShowsAtOnceEverywhere)
{
    ASSERT_EQ(Theme::scheme(), Theme::Scheme::Light);
    QWidget &settings = *preferences();
    const auto *heading = settings.findChild<QLabel *>();
    ASSERT_NE(heading, nullptr);
    const QColor lightWords = heading->palette().color(QPalette::WindowText);
    EXPECT_EQ(groundOf(settings), Theme::card.of(Theme::Scheme::Light));

    choose("radioButtonSchemeDark");
    EXPECT_EQ(groundOf(settings), Theme::card.of(Theme::Scheme::Dark));
    EXPECT_EQ(groundOf(find<QWidget>(window(), "rightContentView")), Theme::content.of(Theme::Scheme::Dark));
    EXPECT_NE(heading->palette().color(QPalette::WindowText), lightWords)
        << "words with a colour of their own follow";

    choose("radioButtonContrastHigh");
    EXPECT_EQ(Theme::scheme(), Theme::Scheme::DarkContrast);
    EXPECT_EQ(groundOf(settings), QColor(Qt::black));
    {
        const PaperColours paper;
        EXPECT_EQ(QColor(Theme::card), QColor(Qt::white)) << "paper stays white";
    }
    EXPECT_EQ(QColor(Theme::card), QColor(Qt::black));

    choose("radioButtonSchemeDesktop");
    choose("radioButtonContrastDesktop");
    EXPECT_EQ(groundOf(settings), Theme::card.of(Theme::Scheme::Light));
    EXPECT_EQ(heading->palette().color(QPalette::WindowText), lightWords);
}

TEST_F(AppearanceTest, ThePreferencesFitOntoALowScreenAndAllOfThemCanBeReached)
{
    QWidget &settings = *preferences();
    EXPECT_LE(settings.height(), settings.screen()->availableGeometry().height());
    auto &button = find<QWidget>(settings, "buttonDevices");
    settings.resize(settings.width(), 300);
    QApplication::setActiveWindow(&settings);
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"radioButtonSchemeDesktop"_s);
    for (int count = 0; count < 30 && !button.hasFocus(); ++count)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_TRUE(button.hasFocus());
    QApplication::processEvents();
    const QRect shown(button.mapTo(&settings, QPoint()), button.size());
    EXPECT_TRUE(settings.rect().contains(shown)) << "what has the focus comes into sight";
    const QRect widest(find<QWidget>(settings, "radioButtonSchemeDark").mapTo(&settings, QPoint()),
                       find<QWidget>(settings, "radioButtonSchemeDark").size());
    EXPECT_LE(widest.right(), settings.width());
    QTest::keyClick(&button, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(settings.findChild<QWidget *>(u"DevicesWindow"_s), nullptr);
    QTest::keyClick(&button, Qt::Key_Return);
    EXPECT_NE(settings.findChild<QWidget *>(u"DevicesWindow"_s), nullptr);
}

TEST_F(AppearanceTest, WhatTheDesktopWantedLastIsTheFirstPictureOfTheNextStart)
{
    UserDefaults::standard().setObject(u"desktopScheme"_s, 1);
    UserDefaults::standard().setObject(u"desktopAccent"_s, u"#e66100"_s);
    LookOfProgram::showRemembered();
    EXPECT_EQ(Theme::scheme(), Theme::Scheme::Dark);
    EXPECT_NEAR(QColor(Theme::accent).hslHue(), QColor(u"#e66100"_s).hslHue(), 3);
    UserDefaults::standard().setObject(u"appearanceScheme"_s, 99);
    LookOfProgram::showRemembered();
    EXPECT_EQ(Theme::scheme(), Theme::Scheme::Dark) << "a number that is no choice counts as none";
    UserDefaults::standard().setObject(u"appearanceScheme"_s, 1);
    LookOfProgram::showRemembered();
    EXPECT_EQ(Theme::scheme(), Theme::Scheme::Light) << "what the user has fixed goes before";
    UserDefaults::standard().removeObject(u"desktopScheme"_s);
    UserDefaults::standard().removeObject(u"desktopAccent"_s);
}
