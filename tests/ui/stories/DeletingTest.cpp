// What is deleted is named before, and can be had back for a while after.

#include "shell/UndoNote.h"
#include "ui/support/ShellTest.h"
#include "widgets/MessageBoxPresenter.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

class DeletingTest : public ShellTest
{
protected:
    UndoNote &note() { return find<UndoNote>(window(), "undoNote"); }
    void deleteRows(const std::set<int> &rows)
    {
        const ScriptedAlerts yes({Alert::firstButton});
        list().selectRows(rows);
        run(ActionId::Delete);
        asked = yes.asked().front().informativeText;
        settle();
    }

    QString asked;
};

TEST_F(DeletingTest, TheQuestionSaysHowManyAndWhat)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s});
    deleteRows({0});
    EXPECT_EQ(asked, u"“a”"_s);
    deleteRows({0, 1, 2, 3});
    EXPECT_EQ(asked, u"4 tasks: “b”, “c”, “d” and 1 more"_s);
}

TEST_F(DeletingTest, WhatHarmsDoesNotLookLikeWhatDoesNot)
{
    Alert::setPresenter(std::make_shared<MessageBoxPresenter>());
    const auto colourOfDefault = [](bool takesAway) {
        QColor colour;
        QTimer::singleShot(0, [&colour] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            auto *button = qobject_cast<QPushButton *>(box->defaultButton());
            colour = button->grab().toImage().pixelColor(12, button->height() / 2);
            box->reject();
        });
        Alert::run({.message = u"Sure?"_s, .buttons = {u"Do"_s, u"Cancel"_s}, .takesAway = takesAway});
        return colour;
    };
    const QColor harmless = colourOfDefault(false);
    const QColor harmful = colourOfDefault(true);
    EXPECT_GT(harmless.blue(), harmless.red());
    EXPECT_GT(harmful.red(), 2 * harmful.blue());
    Alert::setPresenter(nullptr);
}

TEST_F(DeletingTest, ANoteOffersToTakeItBackUntilSomethingElseIsDone)
{
    addInbox({u"a"_s, u"b"_s, u"c"_s});
    EXPECT_FALSE(note().isVisible());
    deleteRows({0, 1});
    EXPECT_TRUE(note().isVisible());
    EXPECT_EQ(find<QLabel>(note(), "").text(), u"Deleted: 2 tasks"_s);
    find<QPushButton>(note(), "buttonUndoDeletion").click();
    settle();
    EXPECT_EQ(inboxTitles(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    EXPECT_EQ(selectedTitles(), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_FALSE(note().isVisible());

    deleteRows({0});
    EXPECT_EQ(find<QLabel>(note(), "").text(), u"Deleted: 1 task"_s);
    list().selectRow(0);
    run(ActionId::PlanToday);
    EXPECT_FALSE(note().isVisible()) << "Undo would take back something else now";
    run(ActionId::Undo);
    EXPECT_FALSE(note().isVisible());
    deleteRows({0});
    run(ActionId::Undo);
    EXPECT_FALSE(note().isVisible()) << "it is back already";
}
