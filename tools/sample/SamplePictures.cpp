#include "SamplePictures.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int side = 240;

enum class Hair { Short, Long, Bun, Bald, Curls };

struct Face
{
    QRgb ground;
    QRgb shirt;
    QRgb skin;
    QRgb hairColour;
    Hair hair;
    bool hasGlasses = false;
    bool hasBeard = false;
};

const QHash<QString, Face> &faces()
{
    static const QHash<QString, Face> all = {
        {u"tom"_s, {0xffd7e7f2, 0xff2f5d7c, 0xfff1c9a5, 0xff8a4b2a, Hair::Short, false, true}},
        {u"priya"_s, {0xfff6e2c8, 0xffb5476d, 0xffb97d56, 0xff22181c, Hair::Long}},
        {u"daniel"_s, {0xffdcebd9, 0xff22333f, 0xff7a4b2f, 0xff171313, Hair::Short, true}},
        {u"ingrid"_s, {0xffe3e0f3, 0xff4b6b4a, 0xfff6d6bd, 0xffe0bd6a, Hair::Bun}},
        {u"lucy"_s, {0xfff9dcdc, 0xff41527a, 0xfff3cfb3, 0xff9c3b1f, Hair::Long, true}},
        {u"ben"_s, {0xffdfe9ef, 0xff7a8b3c, 0xffeec19b, 0xff4a3626, Hair::Short}},
        {u"rosa"_s, {0xfffbe7b8, 0xff9a3324, 0xffd9a06f, 0xff2b1a14, Hair::Curls}},
        {u"helen"_s, {0xffe6efe8, 0xff6f5a8c, 0xfff4d3ba, 0xffc9ccd1, Hair::Bun, true}},
    };
    return all;
}

void paintHairBehind(QPainter &painter, const Face &face)
{
    painter.setBrush(QColor(face.hairColour));
    if (face.hair == Hair::Long)
        painter.drawRoundedRect(QRectF(66, 52, 108, 128), 52, 52);
    if (face.hair == Hair::Bun)
        painter.drawEllipse(QRectF(96, 22, 48, 46));
    if (face.hair == Hair::Curls) {
        for (const QPointF &curl : {QPointF(78, 78), QPointF(92, 58), QPointF(120, 48), QPointF(148, 58),
                                    QPointF(162, 78), QPointF(166, 104), QPointF(74, 104)})
            painter.drawEllipse(curl, 24, 24);
    }
}

void paintHairBefore(QPainter &painter, const Face &face)
{
    if (face.hair == Hair::Bald)
        return;
    QPainterPath head;
    head.addEllipse(QRectF(76, 52, 88, 108));
    QPainterPath fringe;
    fringe.addRect(QRectF(60, 40, 120, 52));
    QPainterPath forehead;
    forehead.addEllipse(QRectF(84, 78, 76, 70));
    painter.setBrush(QColor(face.hairColour));
    painter.drawPath(head.intersected(fringe).subtracted(forehead));
}

void paintFeatures(QPainter &painter, const Face &face)
{
    painter.setBrush(QColor(0xff2a2320));
    painter.drawEllipse(QPointF(103, 108), 4.5, 5);
    painter.drawEllipse(QPointF(137, 108), 4.5, 5);
    if (face.hasBeard) {
        QPainterPath beard;
        beard.addRoundedRect(QRectF(80, 118, 80, 50), 38, 38);
        QPainterPath mouth;
        mouth.addEllipse(QRectF(92, 100, 56, 38));
        painter.setBrush(QColor(face.hairColour));
        painter.drawPath(beard.subtracted(mouth));
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0xff9c4a40), 4, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(QRectF(106, 118, 28, 18), 200 * 16, 140 * 16);
    if (face.hasGlasses) {
        painter.setPen(QPen(QColor(0xff33363c), 3));
        painter.drawEllipse(QPointF(103, 108), 14, 13);
        painter.drawEllipse(QPointF(137, 108), 14, 13);
        painter.drawLine(QPointF(117, 107), QPointF(123, 107));
    }
    painter.setPen(Qt::NoPen);
}

void paintFace(QPainter &painter, const Face &face)
{
    painter.fillRect(0, 0, side, side, QColor(face.ground));
    painter.setPen(Qt::NoPen);
    paintHairBehind(painter, face);
    painter.setBrush(QColor(face.shirt));
    painter.drawRoundedRect(QRectF(38, 182, 164, 110), 60, 60);
    painter.setBrush(QColor(face.skin).darker(108));
    painter.drawRoundedRect(QRectF(102, 146, 36, 54), 18, 18);
    painter.setBrush(QColor(face.skin));
    painter.drawEllipse(QRectF(76, 52, 88, 112));
    paintHairBefore(painter, face);
    paintFeatures(painter, face);
}

/// A larch over a shuttle of a loom.
void paintLarch(QPainter &painter)
{
    painter.fillRect(0, 0, side, side, QColor(0xff23463c));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xffe9dfc7));
    for (int tier = 0; tier < 3; ++tier) {
        const double top = 36 + tier * 34;
        const double half = 30 + tier * 18;
        painter.drawPolygon(
            QPolygonF({QPointF(120, top), QPointF(120 - half, top + 52), QPointF(120 + half, top + 52)}));
    }
    painter.setBrush(QColor(0xffd08c4a));
    painter.drawRect(QRectF(112, 156, 16, 22));
    painter.drawEllipse(QRectF(52, 184, 136, 22));
}

void paintHarbour(QPainter &painter)
{
    painter.fillRect(0, 0, side, side, QColor(0xfff3efe6));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xff1e4e79));
    painter.drawRect(QRectF(70, 60, 100, 100));
    painter.setBrush(QColor(0xfff7d774));
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            painter.drawRect(QRectF(82 + column * 28, 72 + row * 28, 18, 18));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0xff3f8fbf), 8, Qt::SolidLine, Qt::RoundCap));
    for (int wave = 0; wave < 4; ++wave)
        painter.drawArc(QRectF(40 + wave * 40, 166, 40, 30), (wave % 2 ? 0 : 180) * 16, 180 * 16);
}

void paintTimber(QPainter &painter)
{
    painter.fillRect(0, 0, side, side, QColor(0xfff0e2cd));
    painter.setBrush(QColor(0xffc99a64));
    painter.setPen(QPen(QColor(0xff7c5230), 5));
    for (const QPointF &log : {QPointF(82, 154), QPointF(158, 154), QPointF(120, 88)}) {
        painter.drawEllipse(log, 36, 36);
        painter.drawEllipse(log, 22, 22);
        painter.drawEllipse(log, 8, 8);
    }
}

} // namespace

QImage SamplePictures::draw(const QString &name)
{
    static const QHash<QString, std::function<void(QPainter &)>> signsOfCompanies = {
        {u"larch"_s, paintLarch}, {u"harbour"_s, paintHarbour}, {u"timber"_s, paintTimber}};
    const auto sign = signsOfCompanies.constFind(name);
    const auto face = faces().constFind(name);
    if (sign == signsOfCompanies.cend() && face == faces().cend())
        return {};
    QImage image(side, side, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    if (face != faces().cend())
        paintFace(painter, *face);
    else
        (*sign)(painter);
    return image;
}
