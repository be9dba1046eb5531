#pragma once

#include "foundation/NotificationCenter.h"
#include "records/people/CallSheet.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QVBoxLayout;

/// One page for a call: numbers to press, what is to be talked about, and what was noted last. What is ticked
/// off there is followed by the window of a new note about it.
class CallSheetWindow : public QWidget
{
    Q_OBJECT
public:
    /// \param called a contact or a company.
    CallSheetWindow(const ObjectPtr &called, QWidget *parent);

    void showWindow();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void load();
    QVBoxLayout *addBlock(const QString &heading);
    void addNumber(QVBoxLayout &block, const CallSheet::Number &number);
    void addCall(QVBoxLayout &block, const TaskPtr &call);
    void addNote(QVBoxLayout &block, const EntityNote &note);
    void tick(const TaskPtr &call);
    void offerNote(const TaskPtr &call);

    CallSheet sheet;
    QWidget *content = nullptr;
    QVBoxLayout *column;
    QTimer soon;
    std::vector<Observation> observations;
};
