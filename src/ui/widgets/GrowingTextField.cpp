#include "widgets/GrowingTextField.h"

#include "widgets/Appearance.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QtMath>

constexpr int mostHeight = 180;
constexpr int detailsRows = 3;

GrowingTextField::GrowingTextField(Kind kind, QWidget *parent)
    : QTextEdit(parent)
    , fieldKind(kind)
{
    setAcceptRichText(false);
    setFrameShape(NoFrame);
    setTabChangesFocus(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(kind == Kind::Title ? 2 : Theme::unit);
    Appearance::setFont(*this, kind == Kind::Title ? Theme::FontRole::Large : Theme::FontRole::Body);
    connect(this, &QTextEdit::textChanged, this, &QWidget::updateGeometry);
}

/// Blanks that do not break a line remain, other than in `toPlainText`.
QString GrowingTextField::typedText() const
{
    QString text = document()->toRawText();
    for (QChar &character : text) {
        if (character == QChar::ParagraphSeparator || character == QChar::LineSeparator)
            character = u'\n';
    }
    return text;
}

QString GrowingTextField::text() const
{
    if (isFilling)
        return given;
    const QString typed = typedText();
    return typed == givenAsTyped ? given : typed;
}

void GrowingTextField::showText(const QString &text)
{
    if (this->text() == text)
        return;
    given = text;
    const QScopedValueRollback filling(isFilling, true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    breakLinesFor(text);
    setPlainText(text);
    givenAsTyped = typedText();
}

void GrowingTextField::setFramed(bool framed)
{
    setFrameStyle(framed ? StyledPanel : NoFrame);
    // Text that is read begins where the words of other rows do.
    const int above = framed ? 0 : Theme::unit;
    document()->setDocumentMargin(framed ? Theme::unit - frameWidth() : 0);
    setViewportMargins(0, above, 0, above);
    updateGeometry();
}

/// The ring around the frame follows the focus.
void GrowingTextField::focusInEvent(QFocusEvent *event)
{
    QTextEdit::focusInEvent(event);
    update();
}

void GrowingTextField::focusOutEvent(QFocusEvent *event)
{
    QTextEdit::focusOutEvent(event);
    update();
}

int GrowingTextField::textHeight() const
{
    return qCeil(document()->size().height());
}

QSize GrowingTextField::sizeHint() const
{
    const int least = fontMetrics().height() * (fieldKind == Kind::Details ? detailsRows : 1) + 4;
    const QMargins around = viewportMargins();
    return {120, std::clamp(textHeight(), least, std::max(least, mostHeight)) + 2 * frameWidth() +
                     around.top() + around.bottom()};
}

void GrowingTextField::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    if (event->oldSize().width() != event->size().width())
        updateGeometry();
}

void GrowingTextField::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (fieldKind == Kind::Title || event->modifiers() == Qt::ControlModifier))
        return Q_EMIT accepted();
    QTextEdit::keyPressEvent(event);
}

/// For a line that a word does not fit in, Qt measures the whole rest of the word: one of a hundred thousand
/// letters takes seconds. Such a text gets its line breaks anywhere.
void GrowingTextField::breakLinesFor(const QString &added)
{
    constexpr qsizetype longestWord = 2000;
    qsizetype length = 0;
    for (const QChar character : added) {
        length = character.isSpace() ? 0 : length + 1;
        if (length > longestWord)
            return setWordWrapMode(QTextOption::WrapAnywhere);
    }
}

void GrowingTextField::insertFromMimeData(const QMimeData *source)
{
    const QString text = source->text();
    breakLinesFor(text);
    insertPlainText(fieldKind == Kind::Title ? text.simplified() : text);
}
