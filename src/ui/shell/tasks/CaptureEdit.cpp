#include "shell/tasks/CaptureEdit.h"

#include "foundation/Localization.h"
#include "shell/tasks/CaptureOfferList.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

CaptureEdit::CaptureEdit(QWidget *parent)
    : QLineEdit(parent)
{
    setObjectName(u"captureField"_s);
    setPlaceholderText(localized(u"Add a task: “Call Ada tomorrow 5pm #Work !!”"_s));
    setAccessibleName(localized(u"Add a task"_s));
    addAction(Icons::icon(u"add"_s, Theme::secondaryText), LeadingPosition);
    connect(this, &QLineEdit::textChanged, this, &CaptureEdit::edited);
    connect(this, &QLineEdit::textEdited, this, &CaptureEdit::offerNames);
    connect(this, &QLineEdit::cursorPositionChanged, this, [this](int, int now) {
        if (offer && now != offer->from + offer->length)
            endOffer();
    });
}

CaptureEdit::~CaptureEdit()
{
    delete offers;
}

// Names that are offered

bool CaptureEdit::isOffering() const
{
    return offers && offers->isVisible();
}

void CaptureEdit::offerNames()
{
    offer = CaptureOffer::at(text(), cursorPosition(), literal);
    if (!offer)
        return endOffer();
    if (!offers) {
        offers = new CaptureOfferList;
        connect(offers, &CaptureOfferList::chosen, this, &CaptureEdit::takeName);
    }
    const int typed = fontMetrics().horizontalAdvance(text().mid(offer->from, offer->length));
    offers->showBelow(*this, cursorRect().center().x() - (isRightToLeft() ? -typed : typed), *offer);
    Q_EMIT offering();
}

void CaptureEdit::endOffer()
{
    offer.reset();
    if (!isOffering())
        return;
    offers->hide();
    Q_EMIT offering();
}

void CaptureEdit::takeName(const QString &name)
{
    if (!offer)
        return;
    const CaptureOffer taken = *offer;
    const int end = taken.from + taken.length;
    const bool isLast = end >= text().size() || !text().at(end).isSpace();
    setSelection(taken.from, taken.length);
    insert(isLast ? name + u' ' : name);
    endOffer();
}

bool CaptureEdit::keyOfOffer(const QKeyEvent &event)
{
    if (!isOffering() || event.modifiers().testFlag(Qt::ControlModifier))
        return false;
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        offers->walk(event.key() == Qt::Key_Down ? 1 : -1);
        return true;
    case Qt::Key_Escape:
        endOffer();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        if (offers->marked().isEmpty())
            return false;
        takeName(offers->marked());
        return true;
    default:
        return false;
    }
}

void CaptureEdit::focusOutEvent(QFocusEvent *event)
{
    endOffer();
    QLineEdit::focusOutEvent(event);
}

void CaptureEdit::hideEvent(QHideEvent *event)
{
    QLineEdit::hideEvent(event);
    endOffer();
}

// What was understood

void CaptureEdit::readAgain()
{
    Capture now = text().trimmed().isEmpty() ? Capture() : CaptureLine::ofUser().read(text(), literal);
    read = std::move(now);
    update();
    Q_EMIT captureChanged();
}

void CaptureEdit::resume(const CaptureDraft &draft)
{
    setText(draft.text);
    literal = draft.literal;
    readAgain();
}

/// What was taken back stays so, wherever the words before it move it.
void CaptureEdit::edited()
{
    const QString now = text();
    const auto [first, other] = std::mismatch(before.begin(), before.end(), now.begin(), now.end());
    const int same = int(first - before.begin());
    const int moved = int(now.size() - before.size());
    std::set<int> kept;
    for (const int place : literal) {
        if (place < same)
            kept.insert(place);
        else if (place + moved >= same)
            kept.insert(place + moved);
    }
    literal = now.isEmpty() ? std::set<int>() : kept;
    before = now;
    readAgain();
}

bool CaptureEdit::takeBackPiece()
{
    if (hasSelectedText())
        return false;
    const auto piece = std::ranges::find_if(
        read.pieces, [this](const CapturePiece &one) { return one.from + one.length == cursorPosition(); });
    if (piece == read.pieces.end())
        return false;
    // All of its words: "Friday" is none, either, once "on Friday" was taken back.
    const QString line = text();
    for (int place = piece->from; place < piece->from + piece->length; ++place) {
        if (place == piece->from || line.at(place - 1).isSpace())
            literal.insert(place);
    }
    readAgain();
    return true;
}

/// Escape belongs to the field while it has the focus.
bool CaptureEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && !text().isEmpty() &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    // Tab would go on to the next field.
    if (event->type() == QEvent::KeyPress && keyOfOffer(*static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void CaptureEdit::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = event->modifiers() == Qt::NoModifier;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Q_EMIT accepted();
    case Qt::Key_Escape:
        if (text().isEmpty())
            return Q_EMIT left();
        return clear();
    case Qt::Key_Down:
        return Q_EMIT left();
    case Qt::Key_Backspace:
        if (isPlain && takeBackPiece())
            return;
        break;
    default:
        break;
    }
    QLineEdit::keyPressEvent(event);
}

void CaptureEdit::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    // Meanwhile a category may have been made, or midnight may have passed.
    readAgain();
}

QColor CaptureEdit::colourOf(const CapturePiece &piece) const
{
    using enum CapturePiece::Kind;
    switch (piece.kind) {
    case Date:
    case Time:
        return Theme::accent;
    case Repeat:
        return Theme::priorityLow;
    case Priority:
        return Theme::priority(*read.priority);
    case Category:
        return read.category && read.category->colorR()
                   ? QColor::fromRgbF(float(*read.category->colorR()),
                                      float(read.category->colorG().value_or(0)),
                                      float(read.category->colorB().value_or(0)))
                   : QColor(Theme::secondaryText);
    case Project:
    case Person:
    case Place:
        return Theme::warning;
    }
    return Theme::accent;
}

/// The grounds lie over the words, and let them through.
void CaptureEdit::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    if (read.pieces.empty())
        return;
    QTextLayout layout(text(), font());
    layout.beginLayout();
    QTextLine words = layout.createLine();
    layout.endLayout();
    if (!words.isValid())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRect cursor = cursorRect();
    const qreal shift = cursor.center().x() - words.cursorToX(cursorPosition());
    painter.setClipRect(rect().adjusted(Theme::unit / 2, 0, -Theme::unit / 2, 0));
    constexpr qreal radius = 4;
    constexpr qreal line = 2;
    for (const CapturePiece &piece : read.pieces) {
        const qreal one = words.cursorToX(piece.from);
        const qreal other = words.cursorToX(piece.from + piece.length);
        const QRectF ground(std::min(one, other) + shift - 1, cursor.top(), std::abs(other - one) + 2,
                            cursor.height());
        QColor colour = colourOf(piece);
        painter.setBrush(QColor(colour.red(), colour.green(), colour.blue(), 40));
        painter.drawRoundedRect(ground, radius, radius);
        painter.fillRect(QRectF(ground.left() + 2, ground.bottom() - line, ground.width() - 4, line), colour);
    }
}
