// A kind of record that the program does not have, described: its list with letters, colours and a filter,
// its form with a line that can be wrong and a control of its own, its pane and its window.

#include "filters/FilterProject.h"
#include "records/DetailStack.h"
#include "records/PlainRecordScreen.h"
#include "ui/support/ShellTest.h"
#include "widgets/RowItemView.h"

#include <QLineEdit>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A shop, kept where companies are: a name, and an address on the web that has to look like one.
class ShopForm : public FormModel
{
public:
    enum Row { Name, Web, Stars };

    explicit ShopForm(CompanyPtr stored)
        : shop(std::move(stored))
    {
        rollback();
    }
    std::vector<FormRow> rows() const override
    {
        using Editor = FormRow::Editor;
        return {{.id = Name, .editor = Editor::Line, .name = u"Name"_s, .controlName = u"fieldName"_s},
                {.id = Web, .editor = Editor::Line, .name = u"Web"_s, .controlName = u"fieldWeb"_s},
                {.id = Stars, .editor = Editor::Own, .name = u"Stars"_s, .controlName = {}}};
    }
    QString label(int row) const override { return rows()[static_cast<std::size_t>(row)].name; }
    QString text(int row) const override { return row == Name ? name : row == Web ? web : u"***"_s; }
    void setText(int row, const QString &text) override
    {
        QString &field = row == Name ? name : web;
        if (std::exchange(field, text) != text && changed)
            changed();
    }
    QString error(int row) const override
    {
        return row == Web && !web.isEmpty() && !web.contains(u'.') ? u"That is no address"_s : QString();
    }
    std::string_view entity() const override { return EntityCompany::entityName; }
    ObjectPtr record() const override { return shop; }
    bool canSave() const override { return !name.isEmpty() && error(Web).isEmpty(); }
    bool isTouched() const override { return !name.isEmpty() || !web.isEmpty(); }
    bool isChanged() override { return name != formerText(Name) || web != formerText(Web); }
    bool save() override
    {
        if (!shop)
            shop = AppDelegate::shared()->managedObjectContext().insert<EntityCompany>();
        shop->setTitle(name);
        shop->setDetails(web);
        return DBWorker::saveOrTell();
    }
    void rollback() override
    {
        name = formerText(Name);
        web = formerText(Web);
        if (changed)
            changed();
    }
    QString formerText(int row) const override
    {
        return !shop ? QString() : row == Name ? shop->title() : shop->details();
    }

private:
    CompanyPtr shop;
    QString name;
    QString web;
};

RecordKind shops(std::vector<ObjectPtr> &removed)
{
    return {.list = {.title = u"Shops"_s,
                     .icon = u"company"_s,
                     .entity = EntityCompany::entityName,
                     .tableName = u"tableViewShops"_s,
                     .opens = RecordListDescription::Opens::OnSelection},
            .rows =
                [](const FilterEntry *filter) {
                    std::vector<ListedRecord> listed;
                    for (const CompanyPtr shop : DBWorker::allCompany())
                        if (!filter || shop->title().contains(u'a'))
                            listed.push_back({shop->rowId(), RecordRows::letterOf(shop->title())});
                    return listed;
                },
            .look =
                [](const ManagedObject &record) {
                    const auto &shop = static_cast<const EntityCompany &>(record);
                    return RecordLook{.title = shop.title(), .detail = shop.details(), .mark = Qt::red};
                },
            .countInWords = [](int count) { return QString::number(count) + u" shops"_s; },
            .form =
                [](const ObjectPtr &record) {
                    return std::make_unique<ShopForm>(std::static_pointer_cast<EntityCompany>(record));
                },
            .paneName = u"ShopPane"_s,
            .windowName = u"ShopWindow"_s,
            .windowTitle = u"New Shop"_s,
            .filter = [] { return std::make_shared<FilterProject>(); },
            .ownControl =
                [](FormModel &model, const FormRow &row, std::function<void()> &sync) {
                    auto *stars = new QPushButton;
                    sync = [&model, stars, row] { stars->setText(model.text(row.id)); };
                    return stars;
                },
            .remove =
                [&removed](const auto &records, const auto &done, const StepBlock &) {
                    removed = records;
                    done();
                }};
}

class InventedKindTest : public ShellTest
{
protected:
    InventedKindTest()
    {
        for (const QString &title : {u"alpha"_s, u"berry"_s, u"ängst"_s}) {
            const auto shop = context().insert<EntityCompany>();
            shop->setTitle(title);
        }
        EXPECT_FALSE(DBWorker::saveContext());
        content.resize(900, 600);
        screen.reset(static_cast<PlainRecordScreen *>(shops(removed).makeScreen()));
        screen->setParent(&content);
        screen->setDetailStack(&stack);
        screen->resize(content.size());
        screen->reloadData();
        content.show();
        settle();
    }
    QStringList titles() const
    {
        QStringList shown;
        for (int row = 0; row < screen->table()->model()->rowCount(); ++row)
            shown.append(screen->table()->model()->index(row, 0).data().toString());
        return shown;
    }

    QWidget content;
    DetailStack stack{content};
    std::vector<ObjectPtr> removed;
    std::unique_ptr<PlainRecordScreen> screen;
};

} // namespace

TEST_F(InventedKindTest, IsListedUnderLettersFilteredEditedAndDeleted)
{
    EXPECT_EQ(titles(), (QStringList{u"A"_s, u"alpha"_s, u"B"_s, u"berry"_s, u"A"_s, u"ängst"_s}))
        << "in the order of its rows";
    auto *pane = dynamic_cast<RecordPane *>(stack.top());
    ASSERT_TRUE(pane);
    EXPECT_EQ(pane->accessibleName(), u"alpha"_s);
    EXPECT_EQ(find<RowItemView>(*pane, "rowStars").findChildren<QPushButton *>().first()->text(), u"***"_s);
    QTest::mouseClick(&find<QPushButton>(*pane, "buttonEdit"), Qt::LeftButton);
    auto &web = find<QLineEdit>(*pane, "fieldWeb");
    QTest::keyClicks(&web, u"nowhere"_s);
    EXPECT_EQ(web.accessibleDescription(), u"That is no address"_s);
    QTest::mouseClick(&find<QPushButton>(*pane, "buttonEdit"), Qt::LeftButton);
    EXPECT_TRUE(pane->isEditing()) << "what is wrong is not saved";
    QTest::keyClicks(&web, u".example"_s);
    EXPECT_EQ(web.accessibleDescription(), QString());
    QTest::keyClick(&web, Qt::Key_Return);
    EXPECT_FALSE(pane->isEditing());
    EXPECT_EQ(DBWorker::allCompany().first()->details(), u"nowhere.example"_s);

    screen->openFilter();
    QTest::keyClicks(QApplication::activePopupWidget()->findChild<QLineEdit *>(u"fieldTitle"_s), u"x"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return titles() == QStringList({u"A"_s, u"alpha"_s}); }));
    screen->clearFilter();
    EXPECT_EQ(titles().size(), 6);
    screen->table()->selectRow(3);
    screen->removeSelection();
    ASSERT_EQ(removed.size(), 1u);
    EXPECT_EQ(std::static_pointer_cast<EntityCompany>(removed.front())->title(), u"berry"_s);
}

TEST_F(InventedKindTest, ItsWindowGoesOnWithWordsOfAnEarlierOne)
{
    const RecordKind kind = shops(removed);
    ObjectPtr none;
    const std::unique_ptr<FormModel> left = kind.form(none);
    EXPECT_TRUE(left->encodedDraft().isEmpty());
    left->setText(ShopForm::Name, u"delta"_s);
    const auto draft = RecordDraft::decoded(left->encodedDraft());
    ASSERT_TRUE(draft);
    const std::unique_ptr<RecordWindow> form(kind.makeWindow(&content));
    form->resume({}, *draft);
    form->showWindow();
    EXPECT_EQ(find<QLineEdit>(*form, "fieldName").text(), u"delta"_s);
    EXPECT_TRUE(form->hasChanges());
    for (const QByteArray damaged : {"", "{}", "[1]", R"({"version":2,"entity":"E","texts":{}})",
                                     R"({"version":1,"entity":"E","texts":{"a":1}})"})
        EXPECT_FALSE(RecordDraft::decoded(damaged)) << damaged.constData();
    form->dropEdit();
}
