#include "shell/tasks/CaptureBar.h"

#include "records/capture/CapturedTask.h"
#include "shell/tasks/CaptureEdit.h"
#include "widgets/Accessibility.h"
#include "widgets/TextLabel.h"

#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

CaptureBar::CaptureBar(std::function<NewTaskRequest()> ofList, QWidget *parent)
    : QWidget(parent)
    , request(std::move(ofList))
    , field(new CaptureEdit)
    , understood(makeTextLabel({}, Theme::FontRole::Small, Theme::secondaryText))
{
    setObjectName(u"captureBar"_s);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::contentMargin, 0, Theme::contentMargin, Theme::unit);
    column->setSpacing(Theme::unit / 2);
    column->addWidget(field);
    column->addWidget(understood);
    understood->setObjectName(u"labelCaptured"_s);
    understood->setContentsMargins(Theme::unit, 0, Theme::unit, 0);
    understood->hide();
    setFocusProxy(field);
    connect(field, &CaptureEdit::captureChanged, this, &CaptureBar::tell);
    connect(field, &CaptureEdit::accepted, this, &CaptureBar::save);
    connect(field, &CaptureEdit::left, this, &CaptureBar::left);
}

void CaptureBar::tell()
{
    const QString words = CapturedTask::inWords(field->capture());
    if (words == understood->text())
        return;
    understood->setText(words);
    understood->setVisible(!words.isEmpty());
    field->setAccessibleDescription(words);
}

/// A line that could not be stored stays.
void CaptureBar::save()
{
    field->readAgain();
    const TaskPtr task = CapturedTask::save(field->capture(), request());
    if (!task)
        return;
    const QString words = CapturedTask::inWords(field->capture());
    // With nothing of it to be typed anew by Undo, which takes the task back.
    field->setText({});
    // Where it went may be another list; this stays until the next line is typed.
    understood->setText(task->title() + (words.isEmpty() ? QString() : u" · "_s + words));
    understood->setVisible(true);
    Q_EMIT captured(task);
}
