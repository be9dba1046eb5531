#pragma once

#include "records/LocationChoice.h"
#include "widgets/PickerField.h"

#include <QPointer>

class LocationBubble;

/// The field of a task's place. Its bubble offers the places there are, and a map for a new one.
class LocationPopup : public PickerField
{
    Q_OBJECT
public:
    explicit LocationPopup(QWidget *parent = nullptr);

    void setLocation(const LocationPtr &newLocation);

Q_SIGNALS:
    /// The user has chosen a place, or none (null).
    void labelLocationClickButtonDone(const LocationPtr &locatin);

private:
    void open();

    LocationPtr location;
    QPointer<LocationBubble> bubble;
};
