#include "widgets/BubbleHeader.h"

#include "foundation/Localization.h"
#include "widgets/Appearance.h"
#include "widgets/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

BubbleHeader::BubbleHeader(const QString &title, QWidget *parent)
    : QWidget(parent)
    , cancel(new QPushButton(localized(u"Cancel"_s)))
    , label(new QLabel)
    , done(new QPushButton(localized(u"DoneButton"_s)))
{
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins({});
    line->setSpacing(Theme::unit);
    cancel->setObjectName(u"buttonCancel"_s);
    done->setObjectName(u"buttonDone"_s);
    done->setDefault(true);
    Appearance::setFont(*label, Theme::FontRole::BodyStrong);
    label->setAlignment(Qt::AlignCenter);
    label->setMinimumWidth(1);
    line->addWidget(cancel);
    line->addWidget(label, 1);
    line->addWidget(done);
    connect(cancel, &QPushButton::clicked, this, &BubbleHeader::cancelClicked);
    connect(done, &QPushButton::clicked, this, &BubbleHeader::doneClicked);
    setTitle(title);
}

void BubbleHeader::setTitle(const QString &title)
{
    label->setText(title);
    setAccessibleName(title);
}

QString BubbleHeader::title() const
{
    return label->text();
}

void BubbleHeader::setCancelText(const QString &text)
{
    cancel->setText(text);
}
