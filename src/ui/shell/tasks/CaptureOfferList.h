#pragma once

#include "records/capture/CaptureOffers.h"

#include <QWidget>

class QListView;
class QStringListModel;

/// The names with which a captured line can go on, in a list below the line. The keys stay in the line, which
/// walks through the list.
class CaptureOfferList : public QWidget
{
    Q_OBJECT
public:
    CaptureOfferList();

    /// Shows an offer over the window of a field, with its names below a place in the field.
    void showBelow(QWidget &field, int x, const CaptureOffer &offer);
    /// Goes on to the next name, or the one before; past the end it begins again.
    void walk(int step);
    /// The marked name; empty if none is.
    QString marked() const;

Q_SIGNALS:
    void chosen(const QString &name);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QStringListModel *names;
    QListView *list;
};
