#pragma once

#include "records/people/DetailItems.h"
#include "records/people/MVCompany.h"
#include "records/people/MissingField.h"
#include "records/people/PhotoEdit.h"

/// A company as a window or a detail screen edits it. Nothing reaches the store before it is saved.
class CompanyForm
{
public:
    /// A new company.
    CompanyForm();
    /// One that is stored.
    explicit CompanyForm(const CompanyPtr &company);

    MVCompany values;
    DetailItems items;
    PhotoEdit photo;

    /// Stores the company, commits, sees to the files of the picture and tells the lists. Without a title
    /// nothing is done and the answer says where the focus goes.
    MissingField clickButtonSave();
    /// The stored row; null until a new company was saved.
    const CompanyPtr &company() const { return row; }

private:
    void writeValues();

    CompanyPtr row;
};
