#include "shell/devices/PassphraseDialog.h"

#include "foundation/Localization.h"
#include "widgets/BusyCursor.h"
#include "widgets/TextLabel.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int passphraseWidth = 420;
constexpr int fewestLetters = 8;

struct Words
{
    QString title;
    QString text;
    QString button;
};

Words wordsFor(PassphraseDialog::Purpose purpose)
{
    switch (purpose) {
    case PassphraseDialog::Purpose::Seal:
        return {
            localized(u"Seal the Folder"_s),
            localized(u"Every other computer asks for this passphrase once. Keep it in a safe place: nobody "
                      "can open the folder without it, and it cannot be found again."_s),
            localized(u"Seal"_s)};
    case PassphraseDialog::Purpose::Change:
        return {
            localized(u"Change the Passphrase"_s),
            localized(u"Every other computer asks for the new passphrase once; until then, nothing goes out "
                      "or comes in there. Whoever knows only the former one cannot read what is written "
                      "from now on."_s),
            localized(u"Change Passphrase"_s)};
    case PassphraseDialog::Purpose::Enter:
        break;
    }
    return {localized(u"Enter the Passphrase"_s),
            localized(u"It was chosen on the computer that sealed the folder."_s),
            localized(u"Use Passphrase"_s)};
}

} // namespace

PassphraseDialog::PassphraseDialog(Purpose asked, Use used, QWidget *parent)
    : QDialog(parent)
    , purpose(asked)
    , useOf(std::move(used))
{
    const bool isNew = purpose != Purpose::Enter;
    const Words shown = wordsFor(purpose);
    setObjectName(u"PassphraseDialog"_s);
    setWindowTitle(shown.title);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *column = new QVBoxLayout(this);
    column->setSpacing(Theme::unit);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(makeTextLabel(windowTitle(), Theme::FontRole::BodyStrong, Theme::text));
    auto *words = makeTextLabel(shown.text, Theme::FontRole::Small, Theme::secondaryText);
    words->setWordWrap(true);
    words->setFixedWidth(passphraseWidth);
    column->addWidget(words);
    first = addField(u"fieldPassphrase"_s, localized(u"Passphrase"_s));
    if (isNew)
        second = addField(u"fieldPassphraseAgain"_s, localized(u"The same once more"_s));
    wrong = makeTextLabel({}, Theme::FontRole::Small, Theme::text);
    wrong->setObjectName(u"labelWrong"_s);
    wrong->setWordWrap(true);
    wrong->setFixedWidth(passphraseWidth);
    wrong->hide();
    column->addWidget(wrong);
    auto *buttons = new QDialogButtonBox;
    auto *cancel = buttons->addButton(localized(u"Cancel"_s), QDialogButtonBox::RejectRole);
    done = buttons->addButton(shown.button, QDialogButtonBox::AcceptRole);
    cancel->setObjectName(u"buttonCancel"_s);
    done->setObjectName(u"buttonDone"_s);
    column->addWidget(buttons);
    // Return never gives up what was typed.
    cancel->setAutoDefault(false);
    done->setDefault(true);
    done->setEnabled(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::accepted, this, &PassphraseDialog::use);
    first->setFocus();
}

QLineEdit *PassphraseDialog::addField(const QString &name, const QString &label)
{
    auto *field = new QLineEdit;
    field->setObjectName(name);
    field->setEchoMode(QLineEdit::Password);
    field->setAccessibleName(label);
    auto *column = static_cast<QVBoxLayout *>(layout());
    column->addWidget(makeTextLabel(label, Theme::FontRole::Small, Theme::secondaryText));
    column->addWidget(field);
    connect(field, &QLineEdit::textChanged, this, [this] {
        wrong->hide();
        done->setEnabled(!first->text().isEmpty() && (!second || !second->text().isEmpty()));
    });
    return field;
}

QString PassphraseDialog::objection() const
{
    if (purpose == Purpose::Enter)
        return {};
    if (first->text().size() < fewestLetters)
        return localizedCount(u"The passphrase needs at least %1 letters."_s, fewestLetters);
    return first->text() == second->text() ? QString() : localized(u"The two are not the same."_s);
}

void PassphraseDialog::use()
{
    const QString words = objection();
    if (!words.isEmpty())
        return say(words);
    OptionalError error;
    {
        const BusyCursor busy;
        error = useOf(first->text());
    }
    if (error)
        return say(localized(error->message) + u'.');
    accept();
}

void PassphraseDialog::say(const QString &words)
{
    wrong->setText(words);
    wrong->show();
    first->setFocus();
    first->selectAll();
}
