#pragma once

#include "cloud/DeviceHealth.h"
#include "widgets/Theme.h"

#include <QWidget>

class QLabel;
class QPushButton;

/// A device, or a file that cannot be read, with what there is to say of it below. A long title is cut; the
/// tip has all of it.
class DeviceRow : public QWidget
{
    Q_OBJECT
public:
    explicit DeviceRow(Theme::FontRole titleRole, QWidget *parent = nullptr);

    void setLine(const DeviceHealth::Line &line);

Q_SIGNALS:
    void removeWanted(const DeviceHealth::Line &line);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void fitTitle();

    DeviceHealth::Line shown;
    QLabel *title;
    QLabel *detail;
    QPushButton *remove;
};
