#include "widgets/KeyTip.h"

#include <QHelpEvent>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

QString keytip::of(const QString &words, const QKeySequence &keys)
{
    return keys.isEmpty() ? words : u"%1 (%2)"_s.arg(words, keys.toString(QKeySequence::NativeText));
}

void keytip::show(const QHelpEvent &event, QWidget &control, const QRect &part, const QString &tip)
{
    if (tip.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(event.globalPos(), tip, &control, part);
}
