#pragma once

#include "objectstore/ManagedObject.h"
#include "records/exchange/ExportFormat.h"

#include <QByteArray>

#include <memory>
#include <span>

class EntityDescription;

/// Makes the text of a file out of records, one after the other.
class RecordWriter
{
public:
    /// A writer for records of an entity; null where there is none of that format for them.
    /// \param rows all that are going to be written.
    static std::unique_ptr<RecordWriter> of(ExportFormat format, const EntityDescription &entity,
                                            std::span<const RowId> rows);
    virtual ~RecordWriter() = default;

    /// What stands before all records.
    virtual QByteArray head() { return {}; }
    /// A record; empty for one that is in the file already.
    virtual QByteArray text(const ManagedObject &record) = 0;
    /// What stands behind all records.
    virtual QByteArray end() { return {}; }
};
