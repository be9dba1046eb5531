#include "shell/TextCommands.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

/// The text that has the keys, as one of the widgets that hold texts; all null if something else has them.
struct FocusedText
{
    QLineEdit *line = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    QTextEdit *rich = qobject_cast<QTextEdit *>(QApplication::focusWidget());
    QPlainTextEdit *plain = qobject_cast<QPlainTextEdit *>(QApplication::focusWidget());

    bool hasSelection() const
    {
        if (line)
            return line->hasSelectedText() && line->echoMode() == QLineEdit::Normal;
        return rich ? rich->textCursor().hasSelection() : plain && plain->textCursor().hasSelection();
    }
    bool isWritable() const
    {
        if (line)
            return !line->isReadOnly();
        return rich ? !rich->isReadOnly() : plain && !plain->isReadOnly();
    }
    void invoke(const char *slot) const
    {
        if (line || rich || plain)
            QMetaObject::invokeMethod(QApplication::focusWidget(), slot);
    }
};

} // namespace

bool TextCommands::canCut()
{
    return FocusedText().hasSelection() && FocusedText().isWritable();
}

bool TextCommands::canCopy()
{
    return FocusedText().hasSelection();
}

bool TextCommands::canPaste()
{
    const QMimeData *held = QApplication::clipboard()->mimeData();
    return FocusedText().isWritable() && held && held->hasText();
}

void TextCommands::cut()
{
    FocusedText().invoke("cut");
}

void TextCommands::copy()
{
    FocusedText().invoke("copy");
}

void TextCommands::paste()
{
    FocusedText().invoke("paste");
}
