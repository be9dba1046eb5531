#include "foundation/Alert.h"

#include "foundation/Log.h"

#include <algorithm>

static std::shared_ptr<AlertPresenter> &currentPresenter()
{
    static std::shared_ptr<AlertPresenter> presenter;
    return presenter;
}

static int answerOfNobody(const AlertQuestion &question)
{
    const QStringList words = {question.title, question.message, question.informativeText};
    Log::line(QStringLiteral("Alert that nobody could be asked: %1 [%2]")
                  .arg(words.join(QStringLiteral(" - ")), question.buttons.join(QStringLiteral(" | "))));
    return Alert::firstButton + std::max(static_cast<int>(question.buttons.size()) - 1, 0);
}

int Alert::run(const AlertQuestion &question)
{
    const auto presenter = currentPresenter();
    return presenter ? presenter->present(question) : answerOfNobody(question);
}

void Alert::setPresenter(std::shared_ptr<AlertPresenter> presenter)
{
    currentPresenter() = std::move(presenter);
}
