// Lists leave the program as files, of whatever they are.

#include "records/DetailStack.h"
#include "records/RecordListScreen.h"
#include "support/FullDisk.h"
#include "ui/support/ShellTest.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QMimeData>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

class ExportTest : public ShellTest
{
protected:
    RecordListScreen &go(SidebarItem item)
    {
        controller().goToList(item);
        settle();
        return static_cast<RecordListScreen &>(*controller().currentScreen());
    }
    /// Chooses the command, answers what it asks, and gives it a file; what is in that then.
    QByteArray exported(const QString &name, const QStringList &filters, const std::vector<int> &answers = {})
    {
        const ScriptedAlerts alerts({answers.begin(), answers.end()});
        EXPECT_TRUE(QTest::qWaitFor([this] { return controller().currentScreen()->canExport(); }));
        run(ActionId::Export);
        auto *dialog = window().findChild<QFileDialog *>();
        if (!dialog)
            return "no dialog";
        EXPECT_EQ(dialog->nameFilters(), filters);
        Q_EMIT dialog->fileSelected(folder.filePath(name));
        delete dialog;
        told.clear();
        for (const auto &question : alerts.asked())
            told << question.message;
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QTemporaryDir folder;
    /// What the user was told with the last file.
    QStringList told;
    const QStringList ofTasks = {u"Calendar (*.ics)"_s, u"Table (*.csv)"_s};
    const QStringList ofPeople = {u"vCards (*.vcf)"_s, u"Table (*.csv)"_s};
};

TEST_F(ExportTest, EveryListLeavesInTheFormatsOfItsKind)
{
    const auto project = context().insert<EntityProject>();
    project->setTitle(u"House"_s);
    const auto note = context().insert<EntityNote>();
    note->setTitle(u"Colours"_s);
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_s);
    const auto works = context().insert<EntityCompany>();
    works->setTitle(u"Works"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    add(u"Paint"_s, [&](MVTask &copy) { copy.delegateToUser = ann; });

    go(SidebarItem::Inbox);
    EXPECT_TRUE(exported(u"a.ics"_s, ofTasks).contains("SUMMARY:Paint\r\n"));
    EXPECT_TRUE(exported(u"a.CSV"_s, ofTasks).contains("\r\nPaint,")) << "the name decides";
    go(SidebarItem::WaitingFor);
    EXPECT_TRUE(exported(u"b.ics"_s, ofTasks).contains("SUMMARY:Paint\r\n"));
    go(SidebarItem::Projects);
    EXPECT_TRUE(exported(u"c.ics"_s, ofTasks).contains("SUMMARY:House\r\n"));
    go(SidebarItem::Notes);
    EXPECT_TRUE(exported(u"d.ics"_s, ofTasks).contains("BEGIN:VJOURNAL\r\n"));
    go(SidebarItem::People);
    EXPECT_TRUE(exported(u"e.csv"_s, ofPeople).contains("\r\nAnn,"));
    go(SidebarItem::Companies);
    EXPECT_TRUE(exported(u"f.vcf"_s, ofPeople).contains("ORG:Works\r\n"));
    go(SidebarItem::Calendar);
    run(ActionId::Export);
    EXPECT_EQ(window().findChild<QFileDialog *>(), nullptr) << "it is no list";
}

TEST_F(ExportTest, WhatIsSelectedLeavesWhereTheUserSaysSo)
{
    for (const QString &title : {u"One"_s, u"Two"_s, u"Three"_s})
        add(title);
    RecordListScreen &list = go(SidebarItem::Inbox);
    list.table()->selectRow(1);
    const QByteArray some = exported(u"some.ics"_s, ofTasks, {Alert::secondButton});
    EXPECT_EQ(some.count("BEGIN:VTODO"), 1);
    EXPECT_TRUE(some.contains("SUMMARY:Two"));
    EXPECT_EQ(exported(u"all.ics"_s, ofTasks, {Alert::firstButton}).count("BEGIN:VTODO"), 3);
    EXPECT_EQ(exported(u"none.ics"_s, ofTasks, {Alert::thirdButton}), "no dialog");
    // The name goes along with the format.
    {
        const ScriptedAlerts alerts({Alert::firstButton});
        run(ActionId::Export);
    }
    auto *named = window().findChild<QFileDialog *>();
    ASSERT_NE(named, nullptr);
    EXPECT_TRUE(named->selectedFiles().front().endsWith(u"/Inbox.ics"_s));
    named->selectNameFilter(ofTasks.back());
    Q_EMIT named->filterSelected(ofTasks.back());
    EXPECT_TRUE(named->selectedFiles().front().endsWith(u"/Inbox.csv"_s));
    delete named;
    // A task that went while the file was chosen is left out.
    list.selectAll();
    run(ActionId::Export);
    auto *dialog = window().findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    context().deleteObject(DBWorker::allInboxTasks().at(0));
    ASSERT_FALSE(DBWorker::saveContext());
    Q_EMIT dialog->fileSelected(folder.filePath(u"late.ics"_s));
    QFile late(folder.filePath(u"late.ics"_s));
    ASSERT_TRUE(late.open(QIODevice::ReadOnly));
    EXPECT_EQ(late.readAll().count("BEGIN:VTODO"), 2);
}

TEST_F(ExportTest, ATableOfPeopleSaysThatItHasNoPictures)
{
    const auto ann = context().insert<EntityContacts>();
    ann->setFirstName(u"Ann"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    go(SidebarItem::People);
    const auto askedFor = [this](const QString &name) {
        exported(name, ofPeople, {Alert::firstButton});
        return told.join(u'\n');
    };
    EXPECT_EQ(askedFor(u"plain.csv"_s), QString());
    ann->setPhotoName(u"face.png"_s);
    ASSERT_FALSE(DBWorker::saveContext());
    EXPECT_EQ(askedFor(u"table.csv"_s),
              u"1 picture has no place in a table and was left out. A file of vCards has it."_s);
    EXPECT_EQ(askedFor(u"cards.vcf"_s), QString());
}

TEST_F(ExportTest, AFullDiskLeavesTheFormerFileAndSaysSo)
{
    add(u"Paint"_s, [](MVTask &copy) { copy.details = QString(100'000, u'x'); });
    go(SidebarItem::Inbox);
    const QByteArray former = exported(u"a.csv"_s, ofTasks);
    ASSERT_GT(former.size(), 100'000);
    add(u"Sweep"_s);
    go(SidebarItem::Today);
    go(SidebarItem::Inbox);
    const FullDisk disk(4096);
    const ScriptedAlerts alerts({Alert::firstButton, Alert::firstButton});
    run(ActionId::Export);
    auto *dialog = window().findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    Q_EMIT dialog->fileSelected(folder.filePath(u"a.csv"_s));
    Q_EMIT dialog->fileSelected(folder.filePath(u"missing/a.csv"_s));
    ASSERT_EQ(alerts.asked().size(), 2u);
    EXPECT_EQ(alerts.asked().front().message, u"The file could not be written"_s);
    EXPECT_TRUE(alerts.asked().front().informativeText.startsWith(u"Nothing was written to \"a.csv\": "_s));
    EXPECT_TRUE(alerts.asked().front().informativeText.endsWith(u"File too large"_s));
    QFile file(folder.filePath(u"a.csv"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), former);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"a.csv"_s}) << "no half file";
}

TEST_F(ExportTest, ATableGoesOverTheClipboardAndComesBack)
{
    const TaskPtr one = add(u"One, with a \"tab\"\tin it"_s, [](MVTask &copy) {
        copy.details = u"two\nlines"_s;
        copy.dueDate = localDate(2026, 12, 24);
    });
    const TaskPtr two = add(u"Two"_s);
    RecordListScreen &list = go(SidebarItem::Inbox);
    list.table()->setFocus();
    list.selectRecords({one});
    run(ActionId::CopyTable);
    const QMimeData *copied = QApplication::clipboard()->mimeData();
    EXPECT_TRUE(copied->data(u"text/csv"_s).contains("One, with"));
    EXPECT_FALSE(copied->text().contains(u"Two"_s)) << "what is selected";
    EXPECT_EQ(copied->text().section(u'\n', 0, 0).count(u'\t'),
              QString::fromUtf8(copied->data(u"text/csv"_s)).section(u'\n', 0, 0).count(u','));
    const QString title = one->title();
    const OptionalDate due = one->dueDate();
    context().deleteObject(one);
    ASSERT_FALSE(DBWorker::saveContext());
    settle();
    {
        const ScriptedAlerts account({Alert::firstButton});
        run(ActionId::Paste);
        settle();
        EXPECT_EQ(account.asked().size(), 1) << "what has become of it";
    }
    const TaskPtr back = stored(title);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->details(), u"two\nlines"_s);
    EXPECT_EQ(back->dueDate(), due);
    // Lines that only look a little like one are tasks.
    QApplication::clipboard()->setText(u"Title\nBuy milk"_s);
    run(ActionId::Paste);
    settle();
    EXPECT_NE(stored(u"Buy milk"_s), nullptr);
}
