// Texts that somebody else has written are shown and passed on as texts.

#include "records/Functional.h"
#include "ui/support/ShellTest.h"
#include "widgets/MessageBoxPresenter.h"
#include "workspace/PlatformConfiguration.h"
#include "workspace/Workspace.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QTimer>

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

} // namespace
