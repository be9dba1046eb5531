#pragma once

#include <QTextEdit>

/// A field of plain text that is as high as its text. As a title it holds one paragraph, and Return accepts
/// it.
class GrowingTextField : public QTextEdit
{
    Q_OBJECT
public:
    enum class Kind { Title, Details };

    explicit GrowingTextField(Kind kind, QWidget *parent = nullptr);

    /// What `showText` gave, to the character, as long as nothing else is typed; line ends are "\n"
    /// otherwise.
    QString text() const;
    /// Shows a text. One that is shown already stays with its cursor.
    void showText(const QString &text);
    /// Whether it looks like the other fields. Text that is only read has no frame.
    void setFramed(bool framed);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void accepted();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    QString typedText() const;
    int textHeight() const;
    void breakLinesFor(const QString &added);

    Kind fieldKind;
    QString given;
    /// What the field makes of the given text.
    QString givenAsTyped;
    bool isFilling = false;
};
