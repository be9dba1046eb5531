#include "records/people/ContactRemoval.h"

#include "records/RecordRemoval.h"
#include "records/people/LoosePictures.h"

void ContactRemoval::remove(const std::vector<ObjectPtr> &records, const std::function<void()> &removed,
                            const StepBlock &step)
{
    QStringList pictures;
    for (const ObjectPtr &record : records) {
        if (const auto *picture = std::get_if<QString>(&record->valueForKey("photoName")))
            pictures.append(*picture);
    }
    // Those who stay, be it since the user ended the work early, keep theirs: the sweep asks them.
    const auto removedWithPictures = [&] {
        LoosePictures::add(pictures);
        removed();
    };
    RecordRemoval::remove(records, removedWithPictures, step);
}
