// Tasks are typed in one line above a list.

#include "foundation/Region.h"
#include "records/DraftKeeper.h"
#include "records/ProjectManager.h"
#include "shell/Shell.h"
#include "shell/tasks/CaptureBar.h"
#include "shell/tasks/CaptureEdit.h"
#include "shell/tasks/CaptureOfferList.h"
#include "ui/support/ShellTest.h"
#include "widgets/TableViewExtended.h"

#include <QFile>
#include <QLabel>
#include <QListView>

using namespace Qt::Literals::StringLiterals;

namespace {

class CaptureTest : public ShellTest
{
protected:
    CaptureTest() { Region::setLocale(u"en_US"_s); }
    ~CaptureTest() override { Region::reload(); }

    CaptureEdit &line() { return *screen().captureBar()->edit(); }
    QString told()
    {
        const auto *label = window().findChild<QLabel *>(u"labelCaptured"_s);
        return label && label->isVisible() ? label->text() : QString();
    }
    /// The names with which the line can go on; the marked one in brackets.
    QString offered()
    {
        const auto *offers = window().findChild<CaptureOfferList *>(u"captureOffers"_s);
        if (!offers || !offers->isVisible())
            return {};
        QStringList names;
        const QAbstractItemModel &model = *offers->findChild<QListView *>()->model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const QString name = model.index(row, 0).data().toString();
            names.append(name == offers->marked() ? u'[' + name + u']' : name);
        }
        return names.join(u", "_s);
    }
    void type(const QString &text) { QTest::keyClicks(&line(), text); }
    void press(Qt::Key pressed) { QTest::keyClick(&line(), pressed); }
    /// The program ends as it does for the system, and starts again.
    void restart()
    {
        EXPECT_EQ(delegate->applicationShouldTerminate(AppDelegate::QuitWish::OfSystem),
                  AppDelegate::TerminateReply::Now);
        delegate->applicationWillTerminate();
        delegate.reset();
        auto made = std::make_unique<Shell>();
        shell = made.get();
        delegate = std::make_unique<AppDelegate>(std::move(made));
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
        window().resize(1080, 700);
    }
    static QByteArray linesOnDisk()
    {
        QFile file(Drafts::folder() + u"/lines.json"_s);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

} // namespace

TEST_F(CaptureTest, ThreeTasksAreTypedPlannedAndFiledWithoutAWindow)
{
    const CategoryPtr work = EntityCategory::title(u"Work"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::Inbox);
    addInbox({u"older"_s});
    run(ActionId::AddInLine);
    ASSERT_TRUE(line().hasFocus());
    type(u"Buy milk"_s);
    EXPECT_EQ(told(), QString());
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(selectedTitles(), QStringList{u"Buy milk"_s}) << "the new row is selected";
    EXPECT_TRUE(line().hasFocus()) << "and the next one can be typed";
    EXPECT_EQ(line().text(), QString());

    type(u"Write report tomorrow #Work !!!"_s);
    EXPECT_TRUE(told().contains(u"Work"_s)) << told().toStdString();
    press(Qt::Key_Return);
    const TaskPtr report = stored(u"Write report"_s);
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->category(), work);
    EXPECT_EQ(report->priority(), Priority::High);
    EXPECT_EQ(report->type(), TaskType::ToDo);
    EXPECT_EQ(report->startDate(), localDate(2026, 11, 22));

    type(u"Gym every monday 6pm for 90 minutes"_s);
    press(Qt::Key_Return);
    const TaskPtr gym = stored(u"Gym"_s);
    ASSERT_NE(gym, nullptr);
    EXPECT_EQ(gym->type(), TaskType::Appointment);
    EXPECT_EQ(gym->startDate(), localDate(2026, 11, 23, 18));
    EXPECT_EQ(gym->dueDate(), localDate(2026, 11, 23, 19, 30));
    EXPECT_TRUE(gym->repeat().contains(u"BYDAY=MO"_s)) << gym->repeat().toStdString();

    run(ActionId::Undo);
    EXPECT_EQ(stored(u"Gym"_s), nullptr) << "one line is one step";
    EXPECT_NE(stored(u"Write report"_s), nullptr);
}

TEST_F(CaptureTest, TheListGivesWhatTheLineDoesNotSay)
{
    showList(SidebarItem::Today);
    run(ActionId::AddInLine);
    type(u"Call"_s);
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(shownTitles(), QStringList{u"Call"_s});
    type(u"Tidy up someday"_s);
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(shownTitles(), QStringList{u"Call"_s}) << "it went where the line says";
    showList(SidebarItem::Someday);
    EXPECT_EQ(shownTitles(), QStringList{u"Tidy up"_s});
}

TEST_F(CaptureTest, BackspaceMakesPlainWordsOfAPieceAndNothingIsLost)
{
    showList(SidebarItem::Inbox);
    run(ActionId::AddInLine);
    type(u"Read Tomorrow"_s);
    EXPECT_NE(told(), QString());
    press(Qt::Key_Backspace);
    EXPECT_EQ(line().text(), u"Read Tomorrow"_s);
    EXPECT_EQ(told(), QString());
    type(u" today"_s);
    EXPECT_NE(told(), QString()) << "what follows is understood still";
    press(Qt::Key_Home);
    type(u"Please "_s);
    EXPECT_EQ(line().capture().title, u"Please Read Tomorrow"_s) << "what was taken back moves along";
    press(Qt::Key_Return);
    EXPECT_NE(stored(u"Please Read Tomorrow"_s), nullptr);

    type(u"   "_s);
    press(Qt::Key_Return);
    type(u"tomorrow"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(line().text().trimmed(), u"tomorrow"_s) << "a line without a title stays";
    press(Qt::Key_Escape);
    EXPECT_EQ(line().text(), QString());
    press(Qt::Key_Escape);
    EXPECT_TRUE(list().hasFocus());
}

TEST_F(CaptureTest, OneBackspaceTakesBackAllWordsOfAPiece)
{
    showList(SidebarItem::Inbox);
    run(ActionId::AddInLine);
    for (const QString &text : {u"Sing on Friday"_s, u"Sing every Monday"_s, u"Sing the day after tomorrow"_s,
                                u"Sing place:\"Town Hall\""_s}) {
        type(text);
        EXPECT_NE(told(), QString()) << text.toStdString();
        press(Qt::Key_Backspace);
        EXPECT_EQ(told(), QString()) << text.toStdString();
        EXPECT_EQ(line().capture().title, text);
        EXPECT_TRUE(line().capture().pieces.empty()) << text.toStdString();
        press(Qt::Key_Escape);
    }
    type(u"tomorrow 5pm"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(told(), u"A title is missing"_s);
    EXPECT_EQ(line().text(), u"tomorrow 5pm"_s);
    press(Qt::Key_Home);
    type(u"Tea "_s);
    press(Qt::Key_Return);
    EXPECT_NE(stored(u"Tea"_s), nullptr);
}

TEST_F(CaptureTest, AHalfTypedLineIsThereAgainAfterAnotherListAndAfterAKill)
{
    const ScriptedAlerts alerts(std::deque<int>{});
    showList(SidebarItem::Inbox);
    run(ActionId::AddInLine);
    type(u"Read Tomorrow"_s);
    press(Qt::Key_Backspace);
    type(u" and mor"_s);
    showList(SidebarItem::Today);
    EXPECT_EQ(line().text(), QString()) << "each list has its own";
    run(ActionId::AddInLine);
    type(u"Call"_s);
    controller().goToList(SidebarItem::Someday);
    showList(SidebarItem::Inbox);
    EXPECT_EQ(line().text(), u"Read Tomorrow and mor"_s);
    EXPECT_EQ(line().capture().title, u"Read Tomorrow and mor"_s) << "what was taken back stays so";
    EXPECT_EQ(told(), QString()) << "nothing hangs over the list before one goes on";

    run(ActionId::AddInLine);
    press(Qt::Key_End);
    type(u"e today"_s);
    EXPECT_TRUE(QTest::qWaitFor([] { return linesOnDisk().contains("and more today"); }))
        << "what a kill leaves: " << linesOnDisk().toStdString();
    run(ActionId::CloseWindow);
    controller().showWindow();
    EXPECT_EQ(line().text(), u"Read Tomorrow and more today"_s);
    restart();
    showList(SidebarItem::Today);
    EXPECT_EQ(line().text(), u"Call"_s);
    showList(SidebarItem::Inbox);
    EXPECT_EQ(line().text(), u"Read Tomorrow and more today"_s);
    run(ActionId::AddInLine);
    press(Qt::Key_Return);
    EXPECT_NE(stored(u"Read Tomorrow and more"_s), nullptr);
    EXPECT_FALSE(linesOnDisk().contains("Read")) << "what is stored does not come back as a line";
    showList(SidebarItem::Today);
    run(ActionId::AddInLine);
    press(Qt::Key_Escape);
    EXPECT_EQ(linesOnDisk(), QByteArray());
    EXPECT_TRUE(alerts.asked().empty()) << "nobody is asked anything";
}

TEST_F(CaptureTest, NamesAreUnderstoodAsTheyAreShownAndBringWhatBelongsToThem)
{
    const CompanyPtr company = context().insert<EntityCompany>();
    company->setTitle(u"Engines"_s);
    const ContactPtr ada = context().insert<EntityContacts>();
    ada->setFirstName(u"Ada"_s);
    ada->setLastName(u"Lovelace"_s);
    ada->setCompany(company);
    const ProjectPtr project = context().insert<EntityProject>();
    project->setTitle(ProjectManager::titleForWant());
    ASSERT_FALSE(DBWorker::saveContext());
    Region::setLocale(u"de_DE"_s);
    showList(SidebarItem::Inbox);
    run(ActionId::AddInLine);
    type(u"Treffen morgen 12:30 #Arbeit +Neues Projekt @Ada ort:\"Altes Rathaus\""_s);
    EXPECT_TRUE(told().contains(u"Arbeit"_s) && told().contains(u"Neues Projekt"_s)) << told().toStdString();
    press(Qt::Key_Return);
    const TaskPtr task = stored(u"Treffen"_s);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->category(), EntityCategory::title(u"Work"_s));
    EXPECT_EQ(task->project(), project);
    EXPECT_EQ(task->delegateToUser(), ada);
    EXPECT_EQ(task->company(), company);
    ASSERT_NE(DBWorker::locationOf(u"Altes Rathaus"_s), nullptr);
    EXPECT_EQ(task->location(), DBWorker::locationOf(u"Altes Rathaus"_s));
    run(ActionId::Undo);
    EXPECT_EQ(stored(u"Treffen"_s), nullptr);
    EXPECT_EQ(DBWorker::locationOf(u"Altes Rathaus"_s), nullptr) << "the place is a part of the step";
}

TEST_F(CaptureTest, ThePiecesLieUnderTheirWords)
{
    showList(SidebarItem::Inbox);
    run(ActionId::AddInLine);
    type(u"Milk tomorrow"_s);
    const QImage with = line().grab().toImage();
    press(Qt::Key_Backspace);
    const QImage without = line().grab().toImage();
    ASSERT_EQ(with.size(), without.size());
    const QFontMetrics metrics(line().font());
    int first = with.width();
    int last = 0;
    for (int x = 0; x < with.width(); ++x) {
        for (int y = 0; y < with.height(); ++y) {
            if (with.pixel(x, y) != without.pixel(x, y)) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
        }
    }
    EXPECT_NEAR(last - first, metrics.horizontalAdvance(u"tomorrow"_s), 8);
}

TEST_F(CaptureTest, HomeTakesALineWhereItHasRoomForIt)
{
    controller().goToList(SidebarItem::Home);
    settle();
    window().resize(1200, 760);
    settle();
    const auto *home = controller().currentScreen();
    run(ActionId::AddInLine);
    ASSERT_EQ(controller().currentScreen(), home);
    auto *typed = qobject_cast<CaptureEdit *>(QApplication::focusWidget());
    ASSERT_NE(typed, nullptr);
    QTest::keyClicks(typed, u"Call the bank tomorrow 9am"_s);
    EXPECT_TRUE(told().contains(u"9:00"_s)) << told().toStdString();
    QTest::keyClick(typed, Qt::Key_Return);
    settle();
    const TaskPtr call = stored(u"Call the bank"_s);
    ASSERT_NE(call, nullptr);
    EXPECT_EQ(call->startDate(), localDate(2026, 11, 22, 9));
    EXPECT_EQ(home->selectedTask(), call) << "its row is in sight";
    QTest::keyClicks(typed, u"Another"_s);
    QTest::keyClick(typed, Qt::Key_Return);
    settle();
    EXPECT_EQ(stored(u"Another"_s)->dueDate(), localDate(2026, 11, 21, 23, 59)) << "for today";

    // In a narrow window the line is that of the Inbox.
    window().resize(700, 600);
    settle();
    EXPECT_EQ(told(), QString()) << "nothing hangs below a line that is gone";
    run(ActionId::AddInLine);
    EXPECT_EQ(screen().type(), ListType::Inbox);
    EXPECT_TRUE(line().hasFocus());
}

TEST_F(CaptureTest, NamesAreOfferedAsTheyAreTyped)
{
    for (const QString &title : {u"Workshop"_s, u"Garden, back"_s})
        context().insert<EntityCategory>()->setTitle(title);
    for (const auto &[title, status] :
         {std::pair(u"Gate"_s, TaskStatus::Open), std::pair(u"Garage"_s, TaskStatus::Done)}) {
        const auto project = context().insert<EntityProject>();
        project->setTitle(title);
        project->setStatus(status);
    }
    for (const auto &[first, last] : {std::pair(u"Zoë"_s, u"Gale"_s), std::pair(u"Ann"_s, u"Lee"_s),
                                      std::pair(u"Ann Maria"_s, u"Zorn"_s)}) {
        const auto person = context().insert<EntityContacts>();
        person->setFirstName(first);
        person->setLastName(last);
    }
    ASSERT_FALSE(DBWorker::saveContext());
    showList(SidebarItem::Inbox);
    run(ActionId::AddInLine);
    type(u"Dig #ga"_s);
    EXPECT_EQ(offered(), u"[Garden, back]"_s);
    EXPECT_EQ(told(), QString()) << "one thing at a time";
    press(Qt::Key_Return);
    EXPECT_EQ(line().text(), u"Dig #Garden, back "_s) << "the first Return takes the name";
    EXPECT_EQ(offered(), QString());
    type(u"+ga"_s);
    EXPECT_EQ(offered(), u"[Gate]"_s) << "what is finished is not offered";
    press(Qt::Key_Tab);
    EXPECT_TRUE(line().hasFocus());
    type(u"@zo"_s);
    EXPECT_EQ(offered(), u"[Ann Maria Zorn], Zoë Gale"_s) << "by either name, whatever the accents";
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    const TaskPtr dig = stored(u"Dig"_s);
    ASSERT_NE(dig, nullptr);
    EXPECT_EQ(dig->category()->title(), u"Garden, back"_s);
    EXPECT_EQ(dig->project()->title(), u"Gate"_s);
    EXPECT_EQ(dig->delegateToUser()->firstName(), u"Zoë"_s);

    // What is a name already goes as it is, and so does what is no name.
    type(u"Sweep #Work"_s);
    EXPECT_EQ(offered(), u"Workshop"_s);
    press(Qt::Key_Return);
    ASSERT_NE(stored(u"Sweep"_s), nullptr);
    EXPECT_EQ(stored(u"Sweep"_s)->category()->title(), u"Work"_s);
    type(u"C #gar"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(offered(), QString());
    EXPECT_EQ(line().text(), u"C #gar"_s) << "Escape closes the names first";
    press(Qt::Key_Return);
    EXPECT_NE(stored(u"C #gar"_s), nullptr);
    for (const QString &plain : {u"Learn C#"_s, u"1 + 1"_s, u"me@gale"_s, u"Say \"#gar"_s, u"@"_s}) {
        line().clear();
        type(plain);
        EXPECT_EQ(offered(), QString()) << plain.toStdString();
    }
    line().clear();
    type(u"#gar"_s);
    EXPECT_NE(offered(), QString());
    press(Qt::Key_Home);
    EXPECT_EQ(offered(), QString()) << "the cursor has left the word";
}
