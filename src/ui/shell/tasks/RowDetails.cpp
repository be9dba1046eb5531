#include "shell/tasks/RowDetails.h"

#include "shell/tasks/RowWriter.h"
#include "widgets/CategoryIcon.h"
#include "widgets/TextLines.h"
#include "widgets/Theme.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int detailSignSize = 11;
constexpr int categoryDotSize = 8;
constexpr int detailSignGap = 5;

QString signOf(TaskRowDetail::Kind kind)
{
    switch (kind) {
    case TaskRowDetail::Kind::Category:
        break;
    case TaskRowDetail::Kind::Project:
        return u"project"_s;
    case TaskRowDetail::Kind::Person:
        return u"people"_s;
    case TaskRowDetail::Kind::Company:
        return u"company"_s;
    case TaskRowDetail::Kind::Place:
        return u"location"_s;
    case TaskRowDetail::Kind::Waiting:
        return u"scheduled"_s;
    }
    return {};
}

int signSizeOf(const TaskRowDetail &detail)
{
    return detail.category ? categoryDotSize : detailSignSize;
}

} // namespace

int rowdetails::widthOf(const QString &text, const QFont &font)
{
    return text.isEmpty() ? 0 : TextLines::width(font, text) + 1;
}

int rowdetails::widthOf(const TaskRowDetail &detail)
{
    return signSizeOf(detail) + detailSignGap + widthOf(detail.text, Theme::font(Theme::FontRole::Small));
}

void rowdetails::write(const RowWriter &writer, const QRect &where, const TaskRowDetail &detail)
{
    if (where.isEmpty())
        return;
    const int size = signSizeOf(detail);
    const QRect sign(where.left(), where.top() + (where.height() - size) / 2, size, size);
    if (detail.category)
        writer.paintDisc(sign, CategoryIcon::colorOf(*detail.category));
    else
        writer.paintIcon(sign, signOf(detail.kind), Theme::secondaryText);
    writer.write(where.adjusted(size + detailSignGap, 0, 0, 0), Theme::FontRole::Small, Theme::secondaryText,
                 detail.text);
}

QStringList rowdetails::signsOf(bool repeats, bool hasNote)
{
    QStringList signs;
    if (repeats)
        signs << u"repeat"_s;
    if (hasNote)
        signs << u"note"_s;
    return signs;
}
