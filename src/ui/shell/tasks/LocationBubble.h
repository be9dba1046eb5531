#pragma once

#include "records/LocationChoice.h"
#include "widgets/Popover.h"

class BubbleHeader;
class CheckList;
class LocationMap;
class QStackedLayout;

/// The bubble of `LocationPopup`: a table of places, and a page for a new one.
class LocationBubble : public Popover
{
    Q_OBJECT
public:
    explicit LocationBubble(const LocationPtr &current, QWidget *parent = nullptr);

    void clickDone();

Q_SIGNALS:
    /// "Done": the place, or null for none. The bubble has closed.
    void chosen(const LocationPtr &location);
    /// A place was deleted.
    void removed(const LocationPtr &location);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void reload();
    void press(int row);
    void removeRow(int row);
    void loadMap();
    bool isTyped() const;
    void askToLeaveMap(bool closes);
    void leaveMap();
    void takeLine(int row);
    void finish(const LocationPtr &location);

    LocationChoice choice;
    BubbleHeader *header;
    QStackedLayout *pages;
    CheckList *table;
    bool wasPressed = false;
    LocationMap *map = nullptr;
};
