#include "eventkit/ColorText.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

static constexpr double fullPart = 255;

static std::optional<EKColor> colorOfDigits(QString digits)
{
    if (digits.size() == 3)
        digits = QString(2, digits[0]) + QString(2, digits[1]) + QString(2, digits[2]);
    if (digits.size() == 6)
        digits += QStringLiteral("ff");
    bool isNumber = false;
    const uint number = digits.toUInt(&isNumber, 16);
    if (!isNumber || digits.size() != 8)
        return std::nullopt;
    const auto part = [number](int shift) { return ((number >> shift) & 0xFFU) / fullPart; };
    return EKColor{part(24), part(16), part(8), part(0)};
}

std::optional<EKColor> colorFromText(const QString &text)
{
    static const QRegularExpression decimal(
        QStringLiteral(R"(^rgb\(\s*(\d{1,3})\s*,\s*(\d{1,3})\s*,\s*(\d{1,3})\s*\)$)"));
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(u'#'))
        return colorOfDigits(trimmed.mid(1));
    const QRegularExpressionMatch match = decimal.match(trimmed);
    if (!match.hasMatch())
        return std::nullopt;
    const auto part = [&](int index) { return std::min(1.0, match.captured(index).toInt() / fullPart); };
    return EKColor{part(1), part(2), part(3), 1};
}

QString textOfColor(const EKColor &color)
{
    QString text = QStringLiteral("#");
    for (const double part : {color.red, color.green, color.blue}) {
        const int number = static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * fullPart));
        text += QStringLiteral("%1").arg(number, 2, 16, QLatin1Char('0'));
    }
    return text;
}
