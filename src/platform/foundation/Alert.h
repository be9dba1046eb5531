#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/// What an alert asks. The buttons stand in the order in which they are numbered.
struct AlertQuestion
{
    QString title = {};
    QString message = {};
    QString informativeText = {};
    QStringList buttons = {};
    /// The buttons, counted from 0, that take away what the user has.
    QList<int> takingAway = {};

    bool operator==(const AlertQuestion &) const = default;
};

/// Shows an alert and waits for the answer: message boxes in the program, a script in a test.
class AlertPresenter
{
public:
    virtual ~AlertPresenter() = default;

    /// Answers `Alert::firstButton` for the first button, one more for each following one.
    virtual int present(const AlertQuestion &question) = 0;
};

/// Modal questions to the user.
class Alert
{
public:
    static constexpr int firstButton = 1000;
    static constexpr int secondButton = 1001;
    static constexpr int thirdButton = 1002;

    /// Asks and gives the number of the button. Where nobody can be asked, the question goes to the log and
    /// the answer is the last button, which is the one that does least.
    static int run(const AlertQuestion &question);
    /// Whether a question stands. Whoever asked it waits for the answer and must not be deleted meanwhile.
    static bool isAsking();

    /// Who shows alerts from now on; null for nobody.
    static void setPresenter(std::shared_ptr<AlertPresenter> presenter);
};
