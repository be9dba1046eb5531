#include "widgets/ProgressSign.h"

#include "foundation/Localization.h"
#include "widgets/Accessibility.h"
#include "widgets/TextLabel.h"
#include "widgets/Theme.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

constexpr int lineWidth = 320;
constexpr int lineThickness = 6;
constexpr int signMargin = 3 * Theme::unit;

namespace {

/// How far something is, without a number.
class ProgressLine : public QWidget
{
public:
    explicit ProgressLine(const ProgressSign &shownSign, int steps)
        : sign(shownSign)
        , count(std::max(1, steps))
    {
        Accessibility::describe(*this, {.role = QAccessible::ProgressBar});
        setFixedSize(lineWidth, lineThickness);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::cardBorder);
        painter.drawRoundedRect(rect(), lineThickness / 2.0, lineThickness / 2.0);
        const double part = std::clamp(static_cast<double>(sign.value()) / count, 0.0, 1.0);
        const QRect done(0, 0, std::max(lineThickness, qRound(part * width())), height());
        painter.setBrush(Theme::accent);
        painter.drawRoundedRect(QStyle::visualRect(layoutDirection(), rect(), done), lineThickness / 2.0,
                                lineThickness / 2.0);
    }

private:
    const ProgressSign &sign;
    int count;
};

} // namespace

ProgressSign::ProgressSign(const QString &sentence, int steps, bool canBeStopped, QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , count(steps)
    , isStoppable(canBeStopped)
    , line(new ProgressLine(*this, steps))
{
    setObjectName(u"progressSign"_s);
    setWindowModality(Qt::ApplicationModal);
    setAccessibleName(sentence);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(signMargin, signMargin, signMargin, signMargin);
    column->setSpacing(2 * Theme::unit);
    column->addWidget(makeTextLabel(sentence, Theme::FontRole::BodyStrong, Theme::text));
    column->addWidget(line);
    if (!isStoppable)
        return;
    auto *cancel = new QPushButton(localized(u"Cancel"_s));
    connect(cancel, &QPushButton::clicked, this, &ProgressSign::reject);
    column->addWidget(cancel, 0, Qt::AlignTrailing);
}

void ProgressSign::setValue(int steps)
{
    done = steps;
    // A reader that is told more often never gets to the end of a number.
    if (constexpr qint64 pause = 1000; !toldLast.isValid() || toldLast.hasExpired(pause)) {
        line->setAccessibleName(u"%1 / %2"_s.arg(done).arg(count));
        toldLast.start();
    }
    line->update();
    if (!isVisible() && !isCanceled)
        show();
    QCoreApplication::processEvents();
}

void ProgressSign::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(Theme::edge);
    painter.setBrush(Theme::card);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void ProgressSign::reject()
{
    isCanceled = isStoppable;
}
