#pragma once

#include "foundation/Alert.h"

#include <QEventLoop>
#include <QTimer>

#include <functional>

/// Answers each question the same way, after something has happened while it stood. Events are handled
/// meanwhile, as below a message box.
class MeanwhileAlerts
{
public:
    MeanwhileAlerts(int answer, std::function<void()> happening)
        : script(std::make_shared<Script>(answer, std::move(happening)))
    {
        Alert::setPresenter(script);
    }
    ~MeanwhileAlerts() { Alert::setPresenter(nullptr); }
    Q_DISABLE_COPY_MOVE(MeanwhileAlerts)

    int asked() const { return script->count; }
    /// Handles events as a question does.
    static void spin()
    {
        constexpr int shortWhile = 150;
        QEventLoop loop;
        QTimer::singleShot(shortWhile, &loop, &QEventLoop::quit);
        loop.exec();
    }

private:
    struct Script : public AlertPresenter
    {
        Script(int givenAnswer, std::function<void()> givenHappening)
            : answer(givenAnswer)
            , happening(std::move(givenHappening))
        {}
        int present(const AlertQuestion &) override
        {
            ++count;
            happening();
            spin();
            return answer;
        }

        int answer;
        std::function<void()> happening;
        int count = 0;
    };

    std::shared_ptr<Script> script;
};
