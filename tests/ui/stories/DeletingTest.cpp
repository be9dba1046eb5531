// What is deleted is named before, and can be had back for a while after.

#include "records/ShellAlerts.h"
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
    QMap<QString, QImage> buttons;
    const auto look = [&buttons] {
        buttons.clear();
        QTimer::singleShot(0, [&buttons] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            for (QAbstractButton *button : box->buttons())
                buttons[button->text()] = button->grab().toImage();
            box->reject();
        });
    };
    const auto edgeOf = [&buttons](const QString &title) {
        const QImage &image = buttons[title];
        return image.isNull() ? QColor() : image.pixelColor(12, image.height() / 2);
    };
    const auto hasRed = [&buttons](const QString &title) {
        const QImage &image = buttons[title];
        for (int place = 0; place < image.width() * image.height(); ++place) {
            const QColor one = image.pixelColor(place % image.width(), place / image.width());
            if (one.red() > 2 * one.blue() && one.red() > 100)
                return true;
        }
        return false;
    };
    look();
    Alert::run({.message = u"Sure?"_s, .buttons = {u"Do"_s, u"Cancel"_s}});
    EXPECT_GT(edgeOf(u"Do"_s).blue(), edgeOf(u"Do"_s).red());
    look();
    Alert::run({.message = u"Sure?"_s, .buttons = {u"Do"_s, u"Cancel"_s}, .takingAway = {0}});
    EXPECT_GT(edgeOf(u"Do"_s).red(), 2 * edgeOf(u"Do"_s).blue());
    // Typed words go with one of three answers.
    look();
    EXPECT_EQ(ShellAlerts::alertDontSave(), ShellAlerts::DontSaveAnswer::Cancel);
    EXPECT_FALSE(hasRed(u"Save"_s));
    EXPECT_FALSE(hasRed(u"Cancel"_s));
    EXPECT_TRUE(hasRed(u"Don't Save"_s));
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
