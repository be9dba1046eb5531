#include "foundation/Alert.h"

#include "foundation/Log.h"

#include <algorithm>
#include <vector>

static std::shared_ptr<AlertPresenter> &currentPresenter()
{
    static std::shared_ptr<AlertPresenter> presenter;
    return presenter;
}

/// One question can set off another.
static int standing = 0;

static int answerOfNobody(const AlertQuestion &question)
{
    const QStringList words = {question.title, question.message, question.informativeText};
    Log::line(QStringLiteral("Alert that nobody could be asked: %1 [%2]")
                  .arg(words.join(QStringLiteral(" - ")), question.buttons.join(QStringLiteral(" | "))));
    return Alert::firstButton + std::max(static_cast<int>(question.buttons.size()) - 1, 0);
}

static int ask(const std::shared_ptr<AlertPresenter> &presenter, const AlertQuestion &question)
{
    return presenter ? presenter->present(question) : answerOfNobody(question);
}

int Alert::run(const AlertQuestion &question)
{
    // The presenter may be another one when the answer comes.
    const auto presenter = currentPresenter();
    ++standing;
    const int answer = ask(presenter, question);
    --standing;
    return answer;
}

bool Alert::isAsking()
{
    return standing > 0;
}

void Alert::setPresenter(std::shared_ptr<AlertPresenter> presenter)
{
    currentPresenter() = std::move(presenter);
}
