#include "filters/MVPopUp.h"

#include "foundation/Localization.h"
#include "records/TaskFormChoices.h"
#include "widgets/Accessibility.h"
#include "widgets/BubbleHeader.h"
#include "widgets/CheckList.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QHash>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

constexpr QSize bubbleSize(350, 223);
constexpr int popUpMargin = 12;

MVPopUp::MVPopUp(const QString &title, MultiPick picked, QWidget *parent)
    : Popover(parent)
    , pick(std::move(picked))
    , header(new BubbleHeader(title))
    , fieldSearch(new QLineEdit)
    , buttonAll(new QPushButton)
    , table(new CheckList)
    , labelEmpty(new QLabel(localized(u"Nothing matches."_s)))
{
    setObjectName(u"MVPopUp"_s);
    setAccessibleName(title);
    setFixedSize(bubbleSize);
    fieldSearch->setObjectName(u"fieldSearch"_s);
    fieldSearch->setPlaceholderText(localized(u"Search"_s));
    fieldSearch->setAccessibleName(localized(u"Search"_s));
    fieldSearch->setClearButtonEnabled(true);
    buttonAll->setObjectName(u"buttonAll"_s);
    table->setAccessibleName(title);
    labelEmpty->setAlignment(Qt::AlignCenter);
    auto *line = new QHBoxLayout;
    line->setSpacing(Theme::unit);
    line->addWidget(fieldSearch, 1);
    line->addWidget(buttonAll);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(popUpMargin, popUpMargin, popUpMargin, popUpMargin);
    column->setSpacing(Theme::unit);
    column->addWidget(header);
    column->addLayout(line);
    column->addWidget(table, 1);
    column->addWidget(labelEmpty, 1);
    connect(fieldSearch, &QLineEdit::textChanged, this, [this](const QString &text) {
        pick.search(text);
        showRows();
        tellCount();
    });
    connect(buttonAll, &QPushButton::clicked, this, [this] {
        pick.toggleAll();
        showMarks();
    });
    connect(table, &CheckList::linePressed, this, [this](int row) {
        pick.toggle(row);
        showMarks();
    });
    connect(header, &BubbleHeader::doneClicked, this, &MVPopUp::clickDone);
    connect(header, &BubbleHeader::cancelClicked, this, &QWidget::close);
    showRows();
    fieldSearch->setFocus();
}

void MVPopUp::showRows()
{
    std::vector<CheckList::Line> lines;
    lines.reserve(static_cast<std::size_t>(pick.rowCount()));
    for (int row = 0; row < pick.rowCount(); ++row)
        lines.push_back({pick.titleOf(row)});
    const bool isEmpty = lines.empty();
    table->setLines(std::move(lines));
    table->setVisible(!isEmpty);
    labelEmpty->setVisible(isEmpty);
    buttonAll->setEnabled(!isEmpty);
    showMarks();
}

void MVPopUp::tellCount()
{
    const int found = pick.rowCount();
    const QString words = localizedCount(u"%1 results"_s, found);
    Accessibility::announce(*this, found == 0 ? labelEmpty->text() : words);
}

void MVPopUp::showMarks()
{
    table->setMarked([this](int row) { return pick.isMarked(row); });
    buttonAll->setText(localized(pick.selectedAll() ? u"Unmark all"_s : u"Mark all"_s));
}

void MVPopUp::clickDone()
{
    close();
    Q_EMIT toPopUp(pick.selection());
}

void MVPopUp::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        button ? button->click() : clickDone();
    else if (event->key() == Qt::Key_Down && fieldSearch->hasFocus())
        table->setFocus();
    else
        Popover::keyPressEvent(event);
}

template <typename T, typename TitleOf>
static MVPopUp *popUpOf(const QString &title, const std::vector<std::shared_ptr<T>> &records, TitleOf titleOf,
                        const FilterSelection &selected, QWidget *parent)
{
    std::vector<MultiPick::Entry> entries;
    QHash<RowId, ObjectPtr> objects;
    for (const auto &record : records) {
        entries.push_back({record->rowId(), titleOf(*record)});
        objects.insert(record->rowId(), record);
    }
    return new MVPopUp(
        title, {std::move(entries), [objects](RowId row) { return objects.value(row); }, selected}, parent);
}

MVPopUp *MVPopUp::of(FilterRow::Editor kind, const FilterSelection &selected, QWidget *parent)
{
    if (kind == FilterRow::Editor::Contacts) {
        std::vector<MultiPick::Entry> entries;
        for (ContactRows::Named &contact : TaskFormChoices::contactNames())
            entries.push_back({contact.row, std::move(contact.fullName)});
        return new MVPopUp(localized(u"Contacts"_s),
                           {std::move(entries), &TaskFormChoices::contactOfRow, selected}, parent);
    }
    if (kind == FilterRow::Editor::Companies)
        return popUpOf(
            localized(u"Companies"_s), TaskFormChoices::companies(),
            [](const EntityCompany &company) { return company.title(); }, selected, parent);
    return popUpOf(localized(u"Categories"_s), TaskFormChoices::contactCategories(),
                   &TaskFormChoices::shownTitle, selected, parent);
}
