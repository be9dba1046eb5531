#include "records/people/ContactCards.h"

#include "foundation/Localization.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

static const QStringList endingsOfCards = {QStringLiteral("vcf"), QStringLiteral("vcard")};

bool ContactCards::isFileOfCards(const QString &path)
{
    return endingsOfCards.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

QString ContactCards::patternsOfFiles()
{
    QStringList patterns;
    for (const QString &ending : endingsOfCards)
        patterns << QStringLiteral("*.") + ending << QStringLiteral("*.") + ending.toUpper();
    return patterns.join(u' ');
}

ContactCards ContactCards::ofFile(const QString &path)
{
    ContactCards cards;
    cards.shownName = QFileInfo(path).fileName();
    cards.filePath = path;
    if (path.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive))
        cards.writtenForm = ContactReader::Form::Table;
    return cards;
}

ContactCards ContactCards::ofText(const QString &name, const QByteArray &text)
{
    ContactCards cards;
    cards.shownName = name;
    cards.content = text;
    return cards;
}

qint64 ContactCards::size() const
{
    return filePath.isEmpty() ? content.size() : QFileInfo(filePath).size();
}

ContactCards::Opened ContactCards::open() const
{
    if (filePath.isEmpty()) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(content);
        buffer->open(QIODevice::ReadOnly);
        return {std::move(buffer), {}};
    }
    auto file = std::make_unique<QFile>(filePath);
    // Anything else, such as a pipe, may keep its reader waiting for ever.
    if (QFileInfo(filePath).exists() && !QFileInfo(filePath).isFile())
        return {nullptr, localized(QStringLiteral("it is no file"))};
    if (!file->open(QIODevice::ReadOnly))
        return {nullptr, file->errorString()};
    return {std::move(file), {}};
}
