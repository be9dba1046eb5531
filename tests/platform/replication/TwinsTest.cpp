#include "DeviceOfLibrary.h"

#include "support/TestSupport.h"

// Two devices join the same twins at once, and one of them knows more than the other.

namespace {

using Authors = std::vector<std::shared_ptr<Author>>;

/// The one with a birthday first, then the one of the smaller identifier.
Authors twinsOf(DeviceOfLibrary &device)
{
    Authors list;
    for (const auto &one : device.library()->fetch<Author>(FetchRequest("Author")))
        list.push_back(one);
    std::ranges::sort(list, {}, [](const auto &one) { return std::pair(!one->born(), one->identifier()); });
    return list;
}

QString joinTwins(DeviceOfLibrary &device)
{
    const Authors all = twinsOf(device);
    Transaction joining(device.library().context(), ChangeAuthor::Replication);
    device.replica().keep({"Author", all.front()->identifier()});
    device.library()->deleteObject(all.back());
    EXPECT_FALSE(joining.commit());
    return all.front()->identifier();
}

void hand(const std::vector<QByteArray> &files, DeviceOfLibrary &to)
{
    for (const QByteArray &bytes : files)
        to.receive(bytes);
    to.takeIn();
}

} // namespace

TEST(TwinsTest, AreNotBothGoneAfterBeingJoinedInOppositeWays)
{
    DeviceOfLibrary one{1};
    DeviceOfLibrary other{2};
    DeviceOfLibrary third{3};
    third.library().author("Twin");
    third.library().author("Twin");
    third.library().save();
    const Authors twins = twinsOf(third);
    twins.back()->setBorn(Date::fromReferenceSeconds(1));
    third.library().save();
    const std::vector<QByteArray> first = third.send();
    twins.back()->setBorn(std::nullopt);
    third.library().save();
    const std::vector<QByteArray> second = third.send();
    hand(first, one);
    hand(second, one);
    hand(first, other);
    EXPECT_NE(joinTwins(one), joinTwins(other));
    const std::vector<QByteArray> ofOne = one.send();
    const std::vector<QByteArray> ofOther = other.send();
    hand(second, other);
    hand(ofOne, other);
    hand(ofOther, one);
    hand(ofOther, third);
    hand(ofOne, third);
    for (DeviceOfLibrary *device : {&one, &other, &third}) {
        EXPECT_EQ(twinsOf(*device).size(), 2u) << "They are joined once more, with all that is known";
        EXPECT_EQ(device->library().dump(), one.library().dump());
    }
}
