// Every screen in three languages, one of them mirrored, at three sizes of the text: all words are whole,
// inside of what holds them and beside each other. And in each scheme: they stand out from what is painted
// below them.

#include "foundation/Region.h"
#include "ui/support/ShellTest.h"
#include "widgets/Appearance.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace {

struct English
{
    static constexpr auto locale = u"en_US";
    static constexpr bool isMirrored = false;
};

struct German
{
    static constexpr auto locale = u"de_DE";
    static constexpr bool isMirrored = false;
};

struct Hebrew
{
    static constexpr auto locale = u"he_IL";
    static constexpr bool isMirrored = true;
};

/// Before the first word is asked for.
template <typename Language>
struct Speaking
{
    Speaking()
    {
        Region::setLocale(QString::fromUtf16(Language::locale));
        QApplication::setLayoutDirection(Language::isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
    }
    ~Speaking() { QApplication::setLayoutDirection(Qt::LeftToRight); }
};

QString nameOf(const QWidget &widget)
{
    QStringList path;
    for (const QWidget *one = &widget; one; one = one->isWindow() ? nullptr : one->parentWidget())
        path.prepend(one->objectName().isEmpty() ? QString::fromLatin1(one->metaObject()->className())
                                                 : one->objectName());
    return path.mid(std::max<qsizetype>(0, path.size() - 4)).join(u'/');
}

QString wordsOf(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return label->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return button->text();
    return {};
}

/// Words that do not fit end in dots, and the tip has all of them.
bool isCutOnPurpose(const QWidget &widget)
{
    return wordsOf(widget).endsWith(u'…') && !widget.toolTip().isEmpty();
}

bool isInScrollArea(const QWidget &widget)
{
    const auto *area = qobject_cast<const QAbstractScrollArea *>(widget.parentWidget()->parentWidget());
    return area && area->viewport() == widget.parentWidget();
}

/// What most pixels of a part of a picture have.
QColor groundOf(const QImage &picture, const QRect &place)
{
    QHash<QRgb, int> counts;
    const QRect inside = place & picture.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            ++counts[picture.pixel(x, y)];
    QRgb most = 0;
    for (auto one = counts.cbegin(); one != counts.cend(); ++one)
        most = counts.value(most) < one.value() ? one.key() : most;
    return QColor::fromRgb(most);
}

/// The words of labels that are hard to see.
QStringList faintWordsIn(QWidget &window)
{
    const QImage picture = window.grab().toImage();
    QStringList found;
    for (const QLabel *label : window.findChildren<QLabel *>()) {
        const QRect seen = label->visibleRegion().boundingRect();
        if (!label->isEnabled() || label->text().isEmpty() || seen.isEmpty())
            continue;
        const QColor ground = groundOf(picture, seen.translated(label->mapTo(&window, QPoint())));
        const double contrast = Theme::contrast(label->palette().color(label->foregroundRole()), ground);
        if (contrast < Theme::leastTextContrast)
            found << u"%1: “%2” has %3"_s.arg(nameOf(*label), label->text().left(50)).arg(contrast);
    }
    return found;
}

class Faults
{
public:
    explicit Faults(const QWidget &whole)
        : window(whole)
    {
        for (const QWidget *widget : window.findChildren<QWidget *>()) {
            const bool isOfToolkit = widget->inherits("QLineEditIconButton");
            if (!widget->isVisible() || widget->isWindow() || widget->size().isEmpty() || isOfToolkit)
                continue;
            look(*widget);
            if (!wordsOf(*widget).isEmpty() || qobject_cast<const QLineEdit *>(widget))
                texts.push_back(widget);
        }
        lookForOverlaps();
    }

    QStringList found;

private:
    void add(const QWidget &widget, const QString &what)
    {
        found << u"%1: “%2” %3"_s.arg(nameOf(widget), wordsOf(widget).left(50), what);
    }

    void look(const QWidget &widget)
    {
        constexpr int slack = 1;
        if (const auto *label = qobject_cast<const QLabel *>(&widget); label && !label->text().isEmpty()) {
            const int needed = label->wordWrap() ? label->heightForWidth(label->width()) : 0;
            if (label->wordWrap()
                    ? needed > label->height() + slack
                    : label->sizeHint().width() > label->width() + slack && !isCutOnPurpose(*label))
                add(widget, label->wordWrap()
                                ? u"needs %1, has %2 in height"_s.arg(needed).arg(label->height())
                                : u"needs %1, has %2"_s.arg(label->sizeHint().width()).arg(label->width()));
        } else if (!wordsOf(widget).isEmpty() && (widget.sizeHint().width() > widget.width() + slack ||
                                                  widget.sizeHint().height() > widget.height() + slack)) {
            add(widget, u"needs %1 × %2, has %3 × %4"_s.arg(widget.sizeHint().width())
                            .arg(widget.sizeHint().height())
                            .arg(widget.width())
                            .arg(widget.height()));
        } else if (widget.minimumSizeHint().width() > widget.width() + slack &&
                   !qobject_cast<const QAbstractScrollArea *>(&widget)) {
            add(widget, u"has %1 of at least %2"_s.arg(widget.width()).arg(widget.minimumSizeHint().width()));
        }
        const QRect room = widget.parentWidget()->rect().adjusted(-slack, -slack, slack, slack);
        if (!room.contains(widget.geometry()) && !isInScrollArea(widget) && !wordsOf(widget).isEmpty())
            add(widget, u"leaves what holds it"_s);
    }

    void lookForOverlaps()
    {
        for (size_t one = 0; one < texts.size(); ++one) {
            for (size_t other = one + 1; other < texts.size(); ++other) {
                if (texts[one]->parentWidget() == texts[other]->parentWidget() &&
                    texts[one]->geometry().intersects(texts[other]->geometry()))
                    add(*texts[one], u"lies on “%1”"_s.arg(wordsOf(*texts[other])));
            }
        }
    }

    const QWidget &window;
    std::vector<const QWidget *> texts;
};

} // namespace

template <typename Language>
class LooksTest : public Speaking<Language>, public ShellTest
{
protected:
    LooksTest()
    {
        add(u"A task whose title goes on for longer than most people would write it"_s, [](MVTask &task) {
            task.type = TaskType::Appointment;
            task.startDate = localDate(2026, 11, 21, 15);
            task.dueDate = localDate(2026, 11, 21, 16);
            task.category = DBWorker::allCategories()[0];
        });
        add(u"Late"_s, [](MVTask &task) {
            task.startDate = localDate(2026, 11, 2);
            task.dueDate = localDate(2026, 11, 4, 23, 59);
        });
        add(u"Idea"_s, [](MVTask &task) { task.dueSomeDay = true; });
        addInbox({u"Inbox one"_s, u"Inbox two"_s});
        const auto person = context().insert<EntityContacts>();
        person->setFirstName(u"Bartholomäus"_s);
        person->setLastName(u"von und zu Hohenlohe-Waldenburg-Schillingsfürst"_s);
        const auto company = context().insert<EntityCompany>();
        company->setTitle(u"Works for Things of Every Kind & Sons, Limited"_s);
        person->setCompany(company);
        const auto project = context().insert<EntityProject>();
        project->setTitle(u"A project that nobody could describe in few words"_s);
        project->setStartDate(localDate(2026, 11, 2));
        const auto note = context().insert<EntityNote>();
        note->setTitle(u"What was said about everything"_s);
        note->setDetail(u"First line\nsecond line"_s);
        EXPECT_FALSE(DBWorker::saveContext());
        window().resize(1080, 760);
    }
    ~LooksTest() override
    {
        Appearance::shared().setTextScale(1);
        Appearance::shared().show(Theme::Scheme::Light);
    }

    static void expectFine(QWidget &shown, const QString &what)
    {
        // A form lays itself out in steps.
        for (int step = 0; step < 5; ++step)
            settle();
        const Faults faults(shown);
        EXPECT_TRUE(faults.found.isEmpty())
            << qPrintable(what) << "\n  " << qPrintable(faults.found.join(u"\n  "_s));
    }

    static void expectVivid(QWidget &shown, const QString &what)
    {
        settle();
        const QStringList faint = faintWordsIn(shown);
        EXPECT_TRUE(faint.isEmpty()) << qPrintable(what) << "\n  " << qPrintable(faint.join(u"\n  "_s));
    }

    /// All screens, the windows over them and the panes beside them.
    void walk(const QString &look) { walk(look, &LooksTest::expectFine); }
    void walk(const QString &look, void (*expect)(QWidget &, const QString &))
    {
        for (const ActionDescription &description : Actions::table()) {
            if (!description.list)
                continue;
            run(description.id);
            expect(window(), look + QString::fromUtf16(description.text));
        }
        for (const ActionId page : {ActionId::CalendarDay, ActionId::CalendarWeek, ActionId::CalendarMonth}) {
            run(page);
            expect(window(), look + QString::fromUtf16(Actions::describe(page).text));
        }
        run(ActionId::ShowToday);
        list().selectRow(0);
        key(Qt::Key_Return);
        expect(window(), look + u"pane"_s);
        run(ActionId::Preferences);
        for (QWidget *shown : QApplication::topLevelWidgets()) {
            if (shown->isVisible() && shown != &window() && !shown->windowFlags().testFlag(Qt::ToolTip)) {
                expect(*shown, look + shown->objectName());
                shown->close();
            }
        }
        using Kind = ToolBarButton::ActionType;
        for (const Kind kind : {Kind::NewProject, Kind::NewContact, Kind::NewCompany, Kind::NewNote}) {
            Q_EMIT controller().currentScreen()->buttonAdd(kind);
            settle();
            QWidget *const shown = QApplication::activeWindow();
            ASSERT_TRUE(shown && shown != &window());
            expect(*shown, look + shown->objectName() + QString::number(int(kind)));
            shown->close();
            settle();
        }
        WindowNewTask &form = openNewTask();
        expect(form, look + u"new task"_s);
        form.close();
        settle();
    }
};

using Languages = testing::Types<English, German, Hebrew>;
TYPED_TEST_SUITE(LooksTest, Languages);

TYPED_TEST(LooksTest, AllWordsAreWholeAtEachSizeOfTheText)
{
    for (const double scale : {1.0, 1.5, 2.0}) {
        Appearance::shared().setTextScale(scale);
        this->walk(u"%1 %: "_s.arg(scale * 100));
    }
}

TYPED_TEST(LooksTest, AllWordsStandOutInEachScheme)
{
    for (const Theme::Scheme scheme : Theme::schemes) {
        Appearance::shared().show(scheme);
        this->walk(u"scheme %1: "_s.arg(int(scheme)), &LooksTest<TypeParam>::expectVivid);
    }
}
