#pragma once

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class DatePicker;
class ListFilter;
class PopUpButton;
class Popover;
class QLineEdit;
class QToolButton;
class RowItemView;
struct FilterRow;

/// The rows in which the filter of a list of any kind is set. What is changed is in force at once.
class TaskFilterController : public QWidget
{
    Q_OBJECT
public:
    static constexpr int contentWidth = 563;
    static constexpr int rowHeight = 45;

    /// Reads the saved entry of the filter, which has to outlive the rows.
    explicit TaskFilterController(ListFilter &filter, QWidget *parent = nullptr);

    /// A button below the rows, and what it does once the bubble has closed.
    struct Action
    {
        QString words;
        std::function<void()> perform;
        /// What comes of it, in a sentence beside the button; empty for nothing to say.
        QString hint = {};
    };
    /// A bubble with the rows in it, ready to be shown; it goes when it is closed.
    /// \param action absent for none.
    static Popover *makePopover(ListFilter &filter, QWidget *parent,
                                const std::optional<Action> &action = {});

private:
    void addRow(const FilterRow &description);
    QWidget *makeControl(const FilterRow &row);
    QLineEdit *makeText(const FilterRow &row);
    QWidget *makeSegment(const FilterRow &row);
    PopUpButton *makePopUp(const QString &key);
    QWidget *makePeriod();
    void setDataPeriod();
    void showPeriod();
    void pickDate(DatePicker &picker);
    void clearPeriod();

    ListFilter &filter;
    std::vector<RowItemView *> enabledRows;
    DatePicker *fromPicker = nullptr;
    DatePicker *toPicker = nullptr;
    QToolButton *clearButton = nullptr;
};
