#include "records/LinksField.h"

#include "foundation/Localization.h"
#include "records/Portraits.h"
#include "widgets/Icons.h"
#include "widgets/PopUpButton.h"
#include "widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

constexpr int linkPortraitSize = 28;

LinksField::LinksField(FormModel &usedModel, const FormRow &usedRow, QWidget *parent)
    : QWidget(parent)
    , model(usedModel)
    , row(usedRow.id)
    , column(new QVBoxLayout(this))
    , adding(new PopUpButton(usedRow.controlName))
{
    column->setContentsMargins(0, Theme::unit / 2, 0, Theme::unit / 2);
    column->setSpacing(Theme::unit / 2);
    column->addWidget(adding);
    adding->setPlaceholderText(usedRow.placeholder);
    adding->setAccessibleName(usedRow.placeholder);
    connect(adding, &QComboBox::activated, this, [this](int place) { model.choose(row, place); });
    setFocusProxy(adding);
}

static QToolButton *makeLineButton(const QString &name, const QString &icon, const QString &what)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(Icons::icon(icon, Theme::secondaryText));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setAccessibleName(what);
    button->setToolTip(what);
    return button;
}

QWidget *LinksField::makeLine(const FormLink &link, bool isEditing)
{
    auto *line = new QWidget(this);
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins({});
    layout->setSpacing(Theme::unit);
    auto *words = makeTextLabel(firstPart(link.text), Theme::FontRole::Body, Theme::text);
    words->setAlignment(Qt::AlignVCenter | Qt::AlignAbsolute |
                        (isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft));
    auto *go = makeLineButton(u"buttonGo"_s, isRightToLeft() ? u"chevron-left"_s : u"chevron-right"_s,
                              localized(u"Show %1"_s).arg(firstPart(link.text)));
    connect(go, &QToolButton::clicked, this, [this, link] { Q_EMIT opened(link.record); });
    if (link.portrait)
        layout->addWidget(new PortraitView(*link.portrait, linkPortraitSize));
    layout->addWidget(words, 1);
    if (isEditing) {
        auto *remove = makeLineButton(u"buttonUnlink"_s, u"clear"_s,
                                      localized(u"Remove %1"_s).arg(firstPart(link.text)));
        // The line goes with its press.
        connect(
            remove, &QToolButton::clicked, this,
            [this, link] {
                adding->setFocus();
                model.unlink(row, link.record);
            },
            Qt::QueuedConnection);
        layout->addWidget(remove);
    }
    layout->addWidget(go);
    return line;
}

void LinksField::showLinks(bool isEditing)
{
    adding->setVisible(isEditing);
    adding->setCurrentIndex(-1);
    std::vector<FormLink> linked = model.links(row);
    if (isEditing == isShownEditing && linked == shown)
        return;
    for (QWidget *line : lines) {
        line->hide();
        line->deleteLater();
    }
    lines.clear();
    shown = std::move(linked);
    isShownEditing = isEditing;
    QWidget *before = nullptr;
    for (const FormLink &link : shown) {
        QWidget *const line = makeLine(link, isEditing);
        column->insertWidget(static_cast<int>(lines.size()), line);
        lines.push_back(line);
        for (auto *button : line->findChildren<QToolButton *>()) {
            if (before)
                setTabOrder(before, button);
            before = button;
        }
    }
    if (before)
        setTabOrder(before, adding);
    updateGeometry();
    Q_EMIT linksChanged();
}
