#pragma once

#include "foundation/Date.h"
#include "store/entities/Entities.h"

#include <QString>

/// The values of a note while a window has them.
class MVNote
{
public:
    QString title;
    OptionalDate creationDate;
    QString detail;
    /// Whom it is about; null for nobody.
    ContactPtr contact;
    CompanyPtr company;
};
