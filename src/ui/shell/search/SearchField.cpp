#include "shell/search/SearchField.h"

#include "foundation/Localization.h"
#include "widgets/Icons.h"
#include "widgets/Theme.h"

#include <QKeyEvent>

using namespace Qt::Literals::StringLiterals;

constexpr int fieldWidth = 208;
constexpr int leastWidth = 116;

SearchField::SearchField(QWidget *parent)
    : QLineEdit(parent)
{
    setObjectName(u"searchField"_s);
    setPlaceholderText(localized(u"Search"_s));
    setAccessibleName(localized(u"Search Morvane"_s));
    setClearButtonEnabled(true);
    addAction(Icons::icon(u"search"_s, Theme::secondaryText), LeadingPosition);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

QSize SearchField::sizeHint() const
{
    return {fieldWidth, QLineEdit::sizeHint().height()};
}

QSize SearchField::minimumSizeHint() const
{
    return {leastWidth, QLineEdit::minimumSizeHint().height()};
}

/// Escape belongs to the field while it has the focus.
bool SearchField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void SearchField::mousePressEvent(QMouseEvent *event)
{
    QLineEdit::mousePressEvent(event);
    Q_EMIT pressed();
}

void SearchField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        return Q_EMIT escaped();
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Q_EMIT walked(event);
    default:
        QLineEdit::keyPressEvent(event);
    }
}
