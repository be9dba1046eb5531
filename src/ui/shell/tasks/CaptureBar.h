#pragma once

#include "records/NewTaskRequest.h"

#include <QWidget>

#include <functional>

class CaptureEdit;
class QLabel;

/// The line above a list in which new tasks are typed, with what was understood of it in words below.
class CaptureBar : public QWidget
{
    Q_OBJECT
public:
    /// \param ofList what a new task of the list begins with.
    explicit CaptureBar(std::function<NewTaskRequest()> ofList, QWidget *parent = nullptr);

    CaptureEdit *edit() const { return field; }

Q_SIGNALS:
    /// A task was stored.
    void captured(const TaskPtr &task);
    void left();

private:
    void tell();
    void save();

    std::function<NewTaskRequest()> request;
    CaptureEdit *field;
    QLabel *understood;
};
