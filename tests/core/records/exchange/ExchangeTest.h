#pragma once

#include "CalendarTest.h"
#include "records/exchange/RecordExport.h"

#include <QBuffer>

/// Writes records to files and reads these.
class ExchangeTest : public CalendarTest
{
protected:
    template <typename Record>
    static QByteArray exported(ExportFormat format, const std::vector<std::shared_ptr<Record>> &records)
    {
        std::vector<RowId> rows;
        for (const auto &record : records)
            rows.push_back(record->rowId());
        QBuffer file;
        file.open(QIODevice::WriteOnly);
        EXPECT_FALSE(RecordExport::write(file, format, Record::entityName, rows));
        return file.data();
    }
    template <typename Record>
    std::shared_ptr<Record> make(const QString &title)
    {
        auto record = context().insert<Record>();
        record->setTitle(title);
        return record;
    }
};
