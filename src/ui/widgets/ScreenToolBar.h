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

private:
    class TitleLabel;
    TitleLabel *titleLabel;
    QHBoxLayout *row;
};
