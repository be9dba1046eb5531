#pragma once

#include <QWidget>

class QMenu;

/// The add button of a screen. A press left of the arrow section adds; a press in the section shows the other
/// kinds of records that can be added.
class ToolBarButton : public QWidget
{
    Q_OBJECT
public:
    /// What a button adds or opens; the numbers are those by which screens name their buttons.
    enum ActionType {
        NewTaskOnStart = 0,
        NewTask = 1,
        NewProject = 2,
        NewContact = 3,
        NewCompany = 4,
        NewNote = 5,
        ImportContacts = 6,
        NewCategory = 7,
        Calendars = 8,
        AskAgain = 9,
    };

    explicit ToolBarButton(ActionType type, QWidget *parent = nullptr);

    void setActionType(ActionType type);
    ActionType actionType() const { return shownType; }
    /// The kinds whose window can be opened; the menu shows the others greyed.
    void setAvailableTypes(const QList<ActionType> &types) { availableTypes = types; }
    /// Keeps the place of the button, which is neither seen nor pressed.
    void setUnseen();
    QString title() const;
    bool hasPopupSection() const;
    /// The records that the menu offers: all that can be added less the button's own.
    QList<ActionType> menuTypes() const;
    static QString titleOf(ActionType type);

    QSize sizeHint() const override;
    /// A quiet button keeps only its icon where there is no room for the words.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void buttonAdd(ToolBarButton::ActionType type);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    /// Whether it opens something rather than adds a record: then it steps back behind the button that does.
    bool isQuiet() const { return !hasPopupSection() && shownType != NewCategory; }
    QString iconName() const;
    void describe();
    void paintBack(QPainter &painter) const;
    QRect popupSection() const;
    void showMenu();
    void addMenuItem(QMenu &menu, ActionType type);

    ActionType shownType;
    QList<ActionType> availableTypes = {NewTask};
    bool isPressed = false;
    bool isHovered = false;
};
