#pragma once

#include "records/NewTaskRequest.h"
#include "records/capture/CaptureDrafts.h"

#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>

class CaptureEdit;

/// The line above a list in which new tasks are typed. What was understood of it hangs below it while one
/// types, and for some seconds after.
class CaptureBar : public QWidget
{
    Q_OBJECT
public:
    /// \param ofList what a new task of the list begins with.
    /// \param key of the list. A line that was begun there stands in the field again.
    CaptureBar(std::function<NewTaskRequest()> ofList, const QString &key, QWidget *parent = nullptr);
    ~CaptureBar() override;

    CaptureEdit *edit() const { return field; }
    /// Makes a task of each line, as it stands. What a calendar or a rule refuses stays out, and its message
    /// has said so.
    std::vector<TaskPtr> takeLines(const QStringList &lines);

Q_SIGNALS:
    /// A task was stored.
    void captured(const TaskPtr &task);
    void left();

protected:
    void hideEvent(QHideEvent *event) override;

private:
    void showWords(const QString &words);
    void tell();
    void save();

    std::function<NewTaskRequest()> request;
    CaptureEdit *field;
    QPointer<QLabel> understood;
    QTimer going;
    CaptureDraftKeeper keeper;
};
