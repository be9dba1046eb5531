#include "shell/tasks/CaptureBar.h"

#include "foundation/Localization.h"
#include "records/TaskBatch.h"
#include "records/capture/CapturedTask.h"
#include "shell/tasks/CaptureEdit.h"
#include "widgets/Accessibility.h"
#include "widgets/Appearance.h"
#include "widgets/FloatingCard.h"
#include "widgets/LongWork.h"
#include "widgets/Theme.h"

#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// How long it is told what became of a line.
constexpr auto told = std::chrono::seconds(6);

/// What was understood, on a card that hangs below the line over whatever is there.
class UnderstoodCard : public QLabel
{
public:
    UnderstoodCard()
    {
        setObjectName(u"labelCaptured"_s);
        setTextFormat(Qt::PlainText);
        Appearance::setFont(*this, Theme::FontRole::Small);
        setContentsMargins(Theme::unit, Theme::unit / 2, Theme::unit, Theme::unit / 2);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        paintFloatingCard(*this);
        QLabel::paintEvent(event);
    }
};

CaptureBar::CaptureBar(std::function<NewTaskRequest()> ofList, const QString &key, QWidget *parent)
    : QWidget(parent)
    , request(std::move(ofList))
    , field(new CaptureEdit)
    , understood(new UnderstoodCard)
    , keeper(key)
{
    constexpr int mostWidth = 560;
    constexpr int leastWidth = 110;
    setObjectName(u"captureBar"_s);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMaximumWidth(mostWidth);
    field->setMinimumWidth(leastWidth);
    auto *line = new QVBoxLayout(this);
    line->setContentsMargins({});
    line->addWidget(field);
    setFocusProxy(field);
    going.setSingleShot(true);
    going.setInterval(told);
    connect(&going, &QTimer::timeout, understood, &QWidget::hide);
    field->resume(keeper.kept());
    connect(field, &CaptureEdit::captureChanged, this, [this] { keeper.keep(field->draft()); });
    connect(field, &CaptureEdit::captureChanged, this, &CaptureBar::tell);
    connect(field, &CaptureEdit::offering, this, &CaptureBar::tell);
    connect(field, &CaptureEdit::accepted, this, &CaptureBar::save);
    connect(field, &CaptureEdit::left, this, &CaptureBar::left);
}

CaptureBar::~CaptureBar()
{
    delete understood;
}

std::vector<TaskPtr> CaptureBar::takeLines(const QStringList &lines)
{
    LongWork work(static_cast<size_t>(lines.size()), localized(u"Adding tasks"_s));
    return TaskBatch::addLines(lines, request(), [&work] { return work.step(); });
}

/// Below the field, over whatever the window has there.
void CaptureBar::showWords(const QString &words)
{
    if (understood->parentWidget() != window())
        understood->setParent(window());
    understood->setText(words);
    understood->setVisible(!words.isEmpty() && understood->parentWidget());
    if (!understood->isVisibleTo(understood->parentWidget()))
        return;
    const QPoint below = field->mapTo(understood->parentWidget(), QPoint(0, field->height() + 2));
    // It begins where the field does, and goes on to the edge of the window.
    const int end = below.x() + field->width();
    const int room = (isRightToLeft() ? end : understood->parentWidget()->width() - below.x()) - Theme::unit;
    const QSize size(std::min(understood->sizeHint().width(), std::max(field->width(), room)),
                     understood->sizeHint().height());
    understood->setGeometry(QRect({isRightToLeft() ? end - size.width() : below.x(), below.y()}, size));
    understood->raise();
}

void CaptureBar::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (understood)
        understood->hide();
}

void CaptureBar::tell()
{
    // Names to choose from take its place meanwhile.
    const QString words = field->isOffering() ? QString() : CapturedTask::inWords(field->capture());
    if (words == understood->text() && !going.isActive())
        return;
    going.stop();
    showWords(words);
    field->setAccessibleDescription(words);
}

/// A line that could not be stored stays.
void CaptureBar::save()
{
    field->readAgain();
    if (field->capture().title.trimmed().isEmpty()) {
        if (!field->text().trimmed().isEmpty())
            showWords(localized(u"A title is missing"_s));
        return;
    }
    const TaskPtr task = CapturedTask::save(field->capture(), request());
    if (!task)
        return;
    const QString words = CapturedTask::inWords(field->capture());
    // With nothing of it to be typed anew by Undo, which takes the task back.
    field->setText({});
    // Where it went may be another list.
    showWords(task->title() + (words.isEmpty() ? QString() : u" · "_s + words));
    going.start();
    Q_EMIT captured(task);
}
