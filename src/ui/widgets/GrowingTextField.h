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

    QString text() const { return toPlainText(); }
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
    int textHeight() const;

    Kind fieldKind;
};
