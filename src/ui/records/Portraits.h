#pragma once

#include "foundation/NotificationCenter.h"
#include "records/Portrait.h"

#include <QCache>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QThreadPool>
#include <QWidget>

#include <vector>

/// Paints people and companies as circles: their picture, or their initials. A picture is read when it is
/// first seen, on another thread; until it is there, and without it, the initials stand. Those last seen are
/// kept. Main thread only.
class Portraits : public QObject
{
    Q_OBJECT
public:
    /// The ones of the program, which go with it.
    static Portraits &shared();
    ~Portraits() override;

    void paint(QPainter &painter, const QRect &place, const Portrait &portrait);
    static void paintInitials(QPainter &painter, const QRect &place, const QString &initials);
    static void paintPicture(QPainter &painter, const QRect &place, const QPixmap &circle);

Q_SIGNALS:
    /// A picture is there: who shows it paints itself again.
    void arrived();

private:
    struct Wanted
    {
        QString path;
        int pixels;
        QString key() const { return path + u'@' + QString::number(pixels); }
    };
    explicit Portraits(QObject *parent);
    const QPixmap *pictureOf(const Wanted &wanted);
    void want(const Wanted &wanted);
    void readNext();
    void take(const Wanted &wanted, const QImage &circle);

    /// By key; the cost is counted in bytes.
    QCache<QString, QPixmap> pictures;
    /// Pictures that cannot be read, until something is stored.
    QSet<QString> missing;
    /// The last one is read first: it is what the user looks at.
    std::vector<Wanted> queue;
    bool isReading = false;
    QThreadPool thread;
    std::vector<Observation> observations;
};

/// A portrait as a widget.
class PortraitView : public QWidget
{
    Q_OBJECT
public:
    explicit PortraitView(const Portrait &portrait, int size, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Portrait portrait;
};
