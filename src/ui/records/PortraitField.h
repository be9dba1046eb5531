#pragma once

#include "widgets/PictureReader.h"

#include <QAbstractButton>

class FormPicture;

/// The round picture of a record at the top of its form. While the record is edited, a press offers to
/// choose, paste or remove one, and a picture can be dropped on it.
class PortraitField : public QAbstractButton
{
    Q_OBJECT
public:
    explicit PortraitField(FormPicture &picture, QWidget *parent = nullptr);

    /// Shows what the form holds. It may be called from anywhere in the form.
    void showPicture(bool isEditing);
    /// Whether something holds a picture, as far as one can know without reading it.
    static bool canTake(const QMimeData &held);
    /// Reads a picture and puts it into the form.
    void take(const QMimeData &held);
    void take(const PictureReader::Source &source);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void showMenu(const QPoint &globalPosition);
    void choose();
    void paste();
    void remove();
    void wasRead(const PictureReader::Result &result);
    void describe();

    FormPicture &picture;
    bool isEditing = false;
    bool isReading = false;
    bool isDropWanted = false;
    /// The circle of a picture without a file, and the bytes it was made of.
    QPixmap circle;
    QByteArray circleData;
};
