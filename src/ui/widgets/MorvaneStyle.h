#pragma once

#include <QProxyStyle>

class QStyleOptionSpinBox;

/// How the controls look: Fusion with flat, rounded buttons and fields, thin scroll bars and one focus ring.
class MorvaneStyle : public QProxyStyle
{
    Q_OBJECT
public:
    MorvaneStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *answer) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                         const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override;
    void polish(QWidget *widget) override;
    void unpolish(QWidget *widget) override;
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    /// Return presses the button that has the keyboard, in windows as in dialogs.
    bool eventFilter(QObject *watched, QEvent *event) override;

    /// The ring around what has the keyboard, for controls that draw themselves.
    static void drawFocusRing(QPainter &painter, const QRectF &around, qreal radius, const QColor &colour);

private:
    void drawSpinBox(const QStyleOptionSpinBox &option, QPainter *painter, const QWidget *widget) const;
};
