#include "../contract/EventStoreContract.h"

#include "eventkit/FolderBackend.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <unistd.h>

/// Calendars in a temporary folder.
class FolderUnderTest : public BackendUnderTest
{
public:
    ~FolderUnderTest() override
    {
        if (isSomebodyElse && seteuid(0) != 0)
            std::abort();
    }

    std::shared_ptr<CalendarBackend> open() override
    {
        return std::make_shared<FolderBackend>(root.path() + u"/calendars"_qs);
    }

    EKSource source() override { return open()->sources().value().front(); }

    void makeReadOnly(const EKCalendar &calendar) override
    {
        const auto readable = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup |
                              QFile::ReadOther | QFile::ExeOther;
        QDirIterator below(root.path(), QDir::AllEntries | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        QFile::setPermissions(root.path(), readable | QFile::WriteOwner);
        while (below.hasNext())
            QFile::setPermissions(below.next(), readable | QFile::WriteOwner);
        QFile::setPermissions(root.path() + u"/calendars/"_qs + calendar.calendarIdentifier, readable);
        // Nothing is read only to the superuser.
        constexpr uid_t nobody = 65534;
        isSomebodyElse = geteuid() == 0 && seteuid(nobody) == 0;
    }

private:
    QTemporaryDir root;
    bool isSomebodyElse = false;
};

static std::unique_ptr<BackendUnderTest> makeFolder()
{
    return std::make_unique<FolderUnderTest>();
}

INSTANTIATE_TEST_SUITE_P(Folder, EventStoreContract, testing::Values(makeFolder));
