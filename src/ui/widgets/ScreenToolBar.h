#pragma once

#include <QWidget>

class QHBoxLayout;

/// The bar of one screen: its title on the leading side, its controls on the other. The title gives way
/// first.
class ScreenToolBar : public QWidget
{
    Q_OBJECT
public:
    explicit ScreenToolBar(const QString &title, QWidget *parent = nullptr);

    void setTitle(const QString &title);
    /// Puts a control behind those that are there.
    void addControl(QWidget *control);
    /// Puts something between title and controls that shows where they leave it room.
    void setMiddle(QWidget *wanted);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    class TitleLabel;
    TitleLabel *titleLabel;
    QHBoxLayout *row;
    QWidget *middle = nullptr;
};
