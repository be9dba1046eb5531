#pragma once

#include <QWidget>

class StartWindowItem;

/// The window with the ways in: the user's own records, the sample, the user guide. It stays in front of the
/// main window.
class StartWindow : public QWidget
{
    Q_OBJECT
public:
    StartWindow();

    StartWindowItem *itemGetStarted() const { return started; }
    StartWindowItem *itemSample() const { return sample; }
    StartWindowItem *itemUserGuide() const { return guide; }

    /// Shows the window, or brings it to the front.
    /// \param behind the window that it stays in front of while both are there; null for none.
    void showWindow(const QWidget *behind);

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeLeftView();
    QWidget *makeRightView();

    StartWindowItem *started;
    StartWindowItem *sample;
    StartWindowItem *guide;
    QWidget *leftView;
};
