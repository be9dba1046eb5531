#include "DeviceOfLibrary.h"

#include "support/TestSupport.h"

// A save tells the others all that it changes, also what is no step of the user.

TEST(CapturedSaveTest, TellsWhatOthersDidWithinTheStepOfTheUser)
{
    DeviceOfLibrary one{1};
    DeviceOfLibrary other{2};
    Library &library = one.library();
    const auto exchanged = [&] {
        for (const QByteArray &bytes : one.send())
            other.receive(bytes);
        other.takeIn();
        EXPECT_EQ(other.library().dump(), library.dump());
    };
    const auto emma = library.book("Emma");
    const auto going = library.book("Going");
    const auto renamed = library.book("Renamed");
    library.save();
    exchanged();
    {
        Transaction step(library.context());
        emma->setPages(5);
        const auto mine = library.book("Mine");
        const auto passing = library.book("Passing");
        {
            const JournalPause others(library.context());
            library.book("Foreign");
            renamed->setTitle(u"Again"_qs);
            library->deleteObject(going);
            library->deleteObject(passing);
            emma->setPrice(3);
            const JournalPause nested(library.context());
            mine->setPages(7);
        }
        emma->setIsLent(true);
        library.book("Last");
        ASSERT_FALSE(step.commit());
    }
    EXPECT_EQ(library.dump().filter(u"Book"_qs).size(), 5);
    exchanged();
    ASSERT_FALSE(library->undo());
    exchanged();
    // It begins with the part of others, and another program has written before.
    library.elsewhere("UPDATE Book SET price = 8 WHERE title = 'Again'");
    {
        Transaction step(library.context());
        {
            const JournalPause others(library.context());
            emma->setPrice(4);
        }
        emma->setPages(6);
        ASSERT_FALSE(step.commit());
    }
    exchanged();
    // What is named was deleted elsewhere meanwhile: the name goes with the same save.
    const auto author = library.author("Jane");
    library.save();
    exchanged();
    emma->setAuthor(author);
    emma->setPages(9);
    library.elsewhere("PRAGMA foreign_keys = ON; DELETE FROM Author");
    library.save();
    exchanged();
    EXPECT_EQ(other.library().find("Emma")->pages(), 9);
    EXPECT_EQ(other.library().find("Emma")->author(), nullptr);
}
