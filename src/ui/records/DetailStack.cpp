#include "records/DetailStack.h"

#include "records/TabsViewController.h"
#include "records/Waiting.h"
#include "widgets/Animations.h"

#include <QApplication>
#include <QEvent>
#include <QPropertyAnimation>

#include <algorithm>

/// The part of the screen's width that a list keeps beside a detail.
constexpr double narrowList = 0.405;

/// On its way out; what it is about can be opened anew.
static bool isLeaving(const DetailViewController &pane)
{
    return pane.testAttribute(Qt::WA_TransparentForMouseEvents);
}

DetailStack::DetailStack(QWidget &rightContentView)
    : content(rightContentView)
{
    content.installEventFilter(this);
}

DetailStack::~DetailStack() = default;

DetailViewController *DetailStack::top() const
{
    return panes.empty() ? nullptr : panes.back();
}

DetailViewController *DetailStack::paneOf(const ObjectPtr &record) const
{
    const auto found = std::find_if(panes.rbegin(), panes.rend(), [&](const auto *pane) {
        return pane->isEnabled() && !isLeaving(*pane) && pane->shows(record);
    });
    return found == panes.rend() ? nullptr : *found;
}

std::vector<ObjectPtr> DetailStack::shownRecords() const
{
    std::vector<ObjectPtr> records;
    for (const DetailViewController *pane : panes) {
        if (ObjectPtr record = pane->record())
            records.push_back(std::move(record));
    }
    return records;
}

// Places

QRect DetailStack::restingPlace() const
{
    const int width = qRound(content.width() * place.width);
    const int left = content.isRightToLeft() ? 0 : content.width() - width;
    return {left, place.topInset, width, content.height() - place.topInset};
}

QPoint DetailStack::outsidePlace() const
{
    const QRect rest = restingPlace();
    return {content.isRightToLeft() ? -rest.width() : content.width(), rest.top()};
}

/// What is covered is not painted and takes no keys.
void DetailStack::hideCovered()
{
    for (DetailViewController *pane : panes)
        pane->setVisible(pane == panes.back());
}

/// Everything at its place at once, as after a change of the window's size.
void DetailStack::settle()
{
    for (DetailViewController *pane : panes) {
        // One that is on its way out goes on.
        if (!isLeaving(*pane))
            pane->setGeometry(restingPlace());
    }
    if (panes.empty() || isLeaving(*panes.front()))
        return;
    delete listMove;
    setListSpace(qRound(content.width() * (1 - narrowList)));
}

bool DetailStack::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        settle();
    return QObject::eventFilter(watched, event);
}

void DetailStack::setListSpace(int width)
{
    listSpace = width;
    if (screen)
        screen->setDetailSpace(width);
}

void DetailStack::moveListSpace(int width, int duration)
{
    delete listMove;
    listMove = new QVariantAnimation(this);
    listMove->setDuration(duration);
    listMove->setStartValue(listSpace);
    listMove->setEndValue(width);
    listMove->setEasingCurve(QEasingCurve::OutCubic);
    connect(listMove, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { setListSpace(value.toInt()); });
    Animations::start(listMove);
}

template <typename Matches>
void DetailStack::removeWhere(Matches matches)
{
    std::vector<DetailViewController *> going;
    std::copy_if(panes.begin(), panes.end(), std::back_inserter(going), matches);
    const bool hadKeys = std::ranges::any_of(
        going, [](const auto *pane) { return pane->isAncestorOf(QApplication::focusWidget()); });
    for (DetailViewController *pane : going)
        drop(pane);
    if (going.empty())
        return;
    if (hadKeys || !QApplication::focusWidget())
        return leave();
    // Whoever is somewhere else stays there.
    if (panes.empty())
        return setListSpace(0);
    panes.back()->show();
    panes.back()->setActive(true);
}

// Coming

/// A pane in which something was typed is not covered without a word.
bool DetailStack::mayBeCovered()
{
    DetailViewController *const pane = top();
    if (!pane || isLeaving(*pane))
        return true;
    LeaveGate gate;
    gate.add(*pane, [] {});
    return gate.mayLeave();
}

bool DetailStack::showDetail(DetailViewController *detail, QWidget *controller)
{
    if (!mayBeCovered()) {
        detail->deleteLater();
        return false;
    }
    setNotActiveLastDeteil();
    if (std::ranges::all_of(panes, [](const auto *pane) { return isLeaving(*pane); })) {
        screen = qobject_cast<TabsViewController *>(controller);
        place = screen ? screen->detailPlace() : DetailPlace();
        moveListSpace(qRound(content.width() * (1 - narrowList)),
                      Animations::duration(Animations::detailSlideIn));
    }
    add(detail);
    slideIn(*detail);
    return true;
}

void DetailStack::add(DetailViewController *detail)
{
    panes.push_back(detail);
    detail->setParent(&content);
    connect(detail, &DetailViewController::backRequested, this, [this, detail] { requestBack(detail); });
    connect(detail, &DetailViewController::textLeft, this, &DetailStack::textLeft);
    connect(detail, &DetailViewController::newTaskWanted, this, &DetailStack::newTaskWanted);
    connect(detail, &DetailViewController::commandsChanged, this, &DetailStack::commandsChanged);
    connect(detail, &DetailViewController::recordWanted, this,
            [this, detail](const ObjectPtr &record) { Q_EMIT recordWanted(record, detail); });
    connect(detail, &DetailViewController::recordRemoved, this,
            [this, detail] { removeWhere([detail](const auto *pane) { return pane == detail; }); });
}

bool DetailStack::embed(DetailViewController *detail, TabsViewController &below)
{
    if (!mayLeave()) {
        detail->deleteLater();
        return false;
    }
    removeAllDetail();
    screen = &below;
    place = below.detailPlace();
    detail->setEmbedded();
    add(detail);
    settle();
    detail->show();
    detail->raise();
    detail->setActive(true);
    return true;
}

void DetailStack::slideIn(DetailViewController &detail)
{
    detail.resize(restingPlace().size());
    detail.move(outsidePlace());
    detail.show();
    detail.raise();
    detail.setActive(true);
    detail.setFocus();
    auto *animation = new QPropertyAnimation(&detail, "pos");
    animation->setDuration(Animations::duration(Animations::detailSlideIn));
    animation->setEndValue(restingPlace().topLeft());
    animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(animation, &QAbstractAnimation::finished, this, [this] {
        settle();
        hideCovered();
    });
    Animations::start(animation);
}

bool DetailStack::showAgain(DetailViewController *detail)
{
    const QPointer<DetailViewController> wanted = detail;
    if (detail == top())
        return true;
    if (!mayBeCovered())
        return false;
    if (wanted)
        bringUp(wanted);
    return true;
}

void DetailStack::bringUp(DetailViewController *detail)
{
    const auto found = std::find(panes.begin(), panes.end(), detail);
    if (found == panes.end() || detail == top())
        return;
    setNotActiveLastDeteil();
    std::rotate(found, found + 1, panes.end());
    slideIn(*detail);
    if (screen)
        screen->detailOnTop(detail->record());
}

void DetailStack::setNotActiveLastDeteil()
{
    if (!panes.empty())
        panes.back()->setActive(false);
}

void DetailStack::setActiveLastDeteil()
{
    if (panes.empty())
        return;
    panes.back()->show();
    panes.back()->setActive(true);
    panes.back()->setFocus();
}

// Going

void DetailStack::requestBack(DetailViewController *detail)
{
    const QPointer<DetailViewController> leaving = detail;
    if (mayBeCovered() && leaving)
        goBack(leaving);
}

void DetailStack::goBack(DetailViewController *detail)
{
    if (detail != top() || isLeaving(*detail))
        return;
    // One beside the list stays; the keys go to the list.
    if (detail->isEmbedded()) {
        if (screen)
            screen->takeKeysBack();
        return;
    }
    detail->setAttribute(Qt::WA_TransparentForMouseEvents);
    DetailViewController *const below = panes.size() > 1 ? panes[panes.size() - 2] : nullptr;
    if (below)
        below->show();
    // Who goes on typing does not type into what is on its way out.
    if (detail->isAncestorOf(QApplication::focusWidget())) {
        if (below)
            below->setFocus();
        else if (screen)
            screen->takeKeysBack();
    }
    const int duration = Animations::duration(Animations::detailSlideOut);
    auto *animation = new QPropertyAnimation(detail, "pos");
    animation->setDuration(duration);
    animation->setEndValue(outsidePlace());
    animation->setEasingCurve(QEasingCurve::InOutCubic);
    connect(animation, &QAbstractAnimation::finished, this, [this, leaving = QPointer(detail)] {
        // It may have been removed on its way.
        if (std::ranges::find(panes, leaving.get()) == panes.end())
            return;
        removeWhere([&leaving](const auto *pane) { return pane == leaving; });
        if (screen && !panes.empty())
            screen->detailOnTop(panes.back()->record());
    });
    Animations::start(animation);
    if (panes.size() == 1 && duration > 0)
        moveListSpace(0, duration);
}

/// Takes a pane out of the stack; it is deleted when its own events have been handled. False if it is not
/// there.
bool DetailStack::drop(DetailViewController *detail)
{
    if (std::erase(panes, detail) == 0)
        return false;
    detail->setActive(false);
    Q_EMIT detail->dismissDeteilViewController();
    detail->clearController();
    detail->hide();
    // One of its own calls may be what waits.
    if (Waiting::isForAnswer())
        Waiting::afterwards(Waiting::isForAnswer, detail, [detail] { detail->deleteLater(); });
    else
        detail->deleteLater();
    return true;
}

/// After panes have gone the one on top, or else the screen, takes over.
void DetailStack::leave()
{
    if (!panes.empty())
        return setActiveLastDeteil();
    setListSpace(0);
    if (screen)
        screen->takeKeysBack();
}

bool DetailStack::hasChanges() const
{
    return std::ranges::any_of(panes, [](auto *pane) { return !isLeaving(*pane) && pane->hasChanges(); });
}

void DetailStack::addTo(LeaveGate &gate)
{
    for (auto pane = panes.rbegin(); pane != panes.rend(); ++pane) {
        if (!isLeaving(**pane))
            gate.add(**pane, [this, detail = *pane] { bringUp(detail); });
    }
}

bool DetailStack::mayLeave()
{
    LeaveGate gate;
    addTo(gate);
    return gate.mayLeave();
}

bool DetailStack::mayLeave(const std::vector<ObjectPtr> &records)
{
    LeaveGate gate;
    for (const ObjectPtr &record : records) {
        if (DetailViewController *pane = paneOf(record))
            gate.add(*pane, [this, pane] { bringUp(pane); });
    }
    return gate.mayLeave();
}

void DetailStack::removeAllDetail()
{
    while (!panes.empty())
        drop(panes.back());
    delete listMove;
    setListSpace(0);
    screen = nullptr;
}

void DetailStack::removeAllDetailFrom(const std::vector<ObjectPtr> &records)
{
    removeWhere([&](const DetailViewController *pane) {
        return std::ranges::any_of(records, [&](const ObjectPtr &record) { return pane->shows(record); });
    });
}
