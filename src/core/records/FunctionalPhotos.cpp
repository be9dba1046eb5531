#include "records/Functional.h"
#include "store/queries/DBWorker.h"

bool Functional::testOrPhotosNameUsed(const QString &photoName)
{
    return DBWorker::allContactWithImageName(photoName).size() == 1;
}
