#include "shell/people/NotesStrip.h"

#include "foundation/Localization.h"
#include "objectstore/StoreChanges.h"
#include "records/people/CallSheet.h"
#include "store/state/NotificationNames.h"
#include "widgets/Appearance.h"
#include "widgets/TextLabel.h"

#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

NotesStrip::NotesStrip(std::function<ObjectPtr()> shownRecord, QWidget *parent)
    : QWidget(parent)
    , record(std::move(shownRecord))
    , label(makeTextLabel({}, Theme::FontRole::Small, Theme::secondaryText))
{
    setObjectName(u"notesStrip"_s);
    label->setObjectName(u"labelNotes"_s);
    label->setTextFormat(Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setFocusPolicy(Qt::TabFocus);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, Theme::unit, 0, 0);
    column->addWidget(label);
    connect(label, &QLabel::linkActivated, this, [this](const QString &place) {
        const auto chosen = place.toUInt();
        if (chosen < notes.size() && notes[chosen]->context() && !notes[chosen]->isDeleted())
            Q_EMIT opened(notes[chosen]);
    });
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &NotesStrip::load);
    observations.push_back(NotificationCenter::defaultCenter().addObserver(
        notifications::contextDidSave, [this](const StoreChanges &changes) {
            if (changes.concerns(EntityNote::entityName))
                soon.start(0);
        }));
    Appearance::follow(*this, [this] { load(); });
}

void NotesStrip::load()
{
    const ObjectPtr shown = record();
    notes.clear();
    std::size_t more = 0;
    if (shown && shown->context() && !shown->isDeleted()) {
        const CallSheet sheet(shown);
        notes = sheet.lastNotes();
        more = sheet.moreNotes();
    }
    QStringList links;
    for (const auto &note : notes)
        links << u"<a href=\"%1\" style=\"color:%2\">%3</a>"_s.arg(links.size())
                     .arg(Theme::selectedText.name(), firstPart(note->title()).toHtmlEscaped());
    QString all = links.join(u", "_s);
    // The titles can hold a "%1" of their own.
    if (more > 0)
        all = localized(u"%1 and %2 more"_s).toHtmlEscaped().arg(all, QString::number(more));
    label->setText(localized(u"Notes"_s).toHtmlEscaped() + u": "_s + all);
    setHidden(notes.empty());
}
