#pragma once

#include "records/NewTaskRequest.h"
#include "records/capture/CaptureLine.h"

/// Makes tasks of captured lines.
namespace CapturedTask {

/// What a form for a new task begins with: what the list that it is made from says, and before that what was
/// captured.
NewTaskRequest request(const Capture &capture, const NewTaskRequest &ofList);
/// Stores the task by the rules of every new task. Null, with the message of the rule, if one stopped it or
/// the store could not be written; also for a capture without a title.
TaskPtr save(const Capture &capture, const NewTaskRequest &ofList);
/// What was understood besides the title, in words: "Mon, Nov 23 · 5:00 PM – 6:00 PM · Work". Empty if
/// nothing was.
QString inWords(const Capture &capture);

} // namespace CapturedTask
