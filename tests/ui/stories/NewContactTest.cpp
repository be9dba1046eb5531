// A new contact is written down who is in the address books of the desktop, or in the program, already.

#include "contacts/CNContactStore.h"
#include "records/DetailStack.h"
#include "records/RecordListScreen.h"
#include "records/RecordPane.h"
#include "records/RecordWindow.h"
#include "ui/support/ShellTest.h"
#include "widgets/RowItemView.h"
#include "workspace/PlatformConfiguration.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

namespace {

class NewContactTest : public ShellTest
{
protected:
    class OneBook : public ContactBackend
    {
    public:
        Result<std::vector<CNContainer>> containers() override
        {
            return std::vector<CNContainer>{{u"f"_s, u"Friends"_s}};
        }
        Result<std::vector<QByteArray>> cards(const CNContainer &) override
        {
            const auto card = [](const QByteArray &lines) {
                return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "\r\nEND:VCARD\r\n";
            };
            return std::vector<QByteArray>{
                card("N:Lee;Ann;;;\r\nORG:Works\r\nTEL;TYPE=CELL:0171\r\nEMAIL:ann@example.org"),
                card("N:<b>Kay;Anke;;;")};
        }
    };

    NewContactTest()
    {
        CNContactStore::setBackendSource([] { return std::make_shared<OneBook>(); });
        PlatformConfiguration::setAuthorization(u"contacts"_s, 3);
        controller().goToList(SidebarItem::People);
        settle();
    }
    ~NewContactTest() override
    {
        if (RecordWindow *const open = newWindow())
            open->dropEdit();
        CNContactStore::setBackendSource({});
        PlatformConfiguration::setAuthorization(u"contacts"_s, 0);
    }
    RecordWindow *newWindow() { return window().findChild<RecordWindow *>(u"WindowNewContacts"_s); }
    void open()
    {
        Q_EMIT controller().currentScreen()->buttonAdd(ToolBarButton::NewContact);
        settle();
        ASSERT_NE(newWindow(), nullptr);
    }
    void type(const QString &text) { QTest::keyClicks(newWindow()->focusWidget(), text); }
    QList<QLabel *> lines()
    {
        QList<QLabel *> seen;
        for (auto *line : newWindow()->findChildren<QLabel *>(u"labelOffer"_s))
            if (line->isVisible())
                seen.append(line);
        return seen;
    }
    bool hasLines(const QStringList &wanted)
    {
        return QTest::qWaitFor([&] {
            QStringList names;
            for (const QLabel *line : lines())
                names.append(line->accessibleName());
            return names == wanted;
        });
    }
    static void press(QLabel &line)
    {
        QTest::mouseClick(&line, Qt::LeftButton, {}, QPoint(8, line.height() / 2));
        settle();
    }
    QString field(const char *row)
    {
        return find<QLineEdit>(find<QWidget>(*newWindow(), row), "field").text();
    }
};

TEST_F(NewContactTest, TakesOverWhatAnAddressBookHas)
{
    open();
    type(u"An"_s);
    ASSERT_TRUE(hasLines({u"Ann Lee, ann@example.org"_s, u"Anke <b>Kay"_s}));
    // The keys go from the names to the lines.
    find<QLineEdit>(*newWindow(), "textFieldLastName").setFocus();
    QTest::keyClick(newWindow()->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(newWindow()->focusWidget(), lines().first());
    QTest::keyClick(newWindow()->focusWidget(), Qt::Key_Return);
    settle();
    EXPECT_TRUE(hasLines({}));
    EXPECT_TRUE(find<RowItemView>(*newWindow(), "rowOffers").isRowHidden());
    EXPECT_EQ(find<QLineEdit>(*newWindow(), "textFieldName").text(), u"Ann"_s);
    EXPECT_EQ(find<QLineEdit>(*newWindow(), "textFieldLastName").text(), u"Lee"_s);
    EXPECT_EQ(field("itemsPhones"), u"0171"_s);
    EXPECT_EQ(field("itemsEmails"), u"ann@example.org"_s);
    EXPECT_EQ(find<QComboBox>(*newWindow(), "popUpButtonCompany").currentText(), u"Works"_s)
        << "a company that is to be made is shown as chosen";
    QTest::mouseClick(&find<QPushButton>(*newWindow(), "buttonSave"), Qt::LeftButton);
    settle();
    const auto ann = EntityContacts::firstName(u"Ann"_s, u"Lee"_s);
    ASSERT_TRUE(ann);
    EXPECT_EQ(ann->company()->title(), u"Works"_s);
    EXPECT_EQ(ann->phone().size(), 1u);
}

TEST_F(NewContactTest, ShowsWhoIsHereAlready)
{
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_s);
    ann->setLastName(u"Lee"_s);
    const auto aaron = context().insert<EntityContacts>();
    aaron->setFirstName(u"Aaron"_s);
    EXPECT_FALSE(DBWorker::saveContext());
    settle();
    open();
    type(u"Ann"_s);
    ASSERT_TRUE(hasLines({u"Ann Lee is already here"_s}));
    press(*lines().first());
    const auto *pane = dynamic_cast<RecordPane *>(controller().detailStack()->top());
    ASSERT_NE(pane, nullptr);
    EXPECT_EQ(pane->record(), ann);
    EXPECT_EQ(find<QLineEdit>(*newWindow(), "textFieldName").text(), u"Ann"_s) << "what was typed stays";
    EXPECT_EQ(field("itemsPhones"), QString());
}

} // namespace
