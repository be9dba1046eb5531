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
    bool isThere() const { return line || rich || plain; }
    /// An empty line without steps of its own has nothing that the user could mean: what was typed last in
    /// one for new tasks is a task already, and the field for searching takes the keys by itself.
    bool leavesSteps() const
    {
        return line && line->text().isEmpty() && !line->isUndoAvailable() && !line->isRedoAvailable();
    }
    bool canUndo() const
    {
        if (line)
            return line->isUndoAvailable();
        return rich ? rich->document()->isUndoAvailable() : plain && plain->document()->isUndoAvailable();
    }
    bool canRedo() const
    {
        if (line)
            return line->isRedoAvailable();
        return rich ? rich->document()->isRedoAvailable() : plain && plain->document()->isRedoAvailable();
    }
    void remove() const
    {
        if (line)
            line->del();
        else if (rich)
            rich->textCursor().removeSelectedText();
        else if (plain)
            plain->textCursor().removeSelectedText();
    }
    void invoke(const char *slot) const
    {
        if (isThere())
            QMetaObject::invokeMethod(QApplication::focusWidget(), slot);
    }
};

} // namespace

bool TextCommands::hasText()
{
    return FocusedText().isThere();
}

bool TextCommands::hasSteps()
{
    return FocusedText().isThere() && !FocusedText().leavesSteps();
}

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

bool TextCommands::canRemove()
{
    return canCut();
}

bool TextCommands::canUndo()
{
    return FocusedText().canUndo();
}

bool TextCommands::canRedo()
{
    return FocusedText().canRedo();
}

void TextCommands::remove()
{
    FocusedText().remove();
}

void TextCommands::selectAll()
{
    FocusedText().invoke("selectAll");
}

void TextCommands::undo()
{
    FocusedText().invoke("undo");
}

void TextCommands::redo()
{
    FocusedText().invoke("redo");
}
