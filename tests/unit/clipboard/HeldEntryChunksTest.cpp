#include "clipboard/HeldEntryChunks.h"

#include <gtest/gtest.h>

using namespace velmora;
using Chunk = HeldEntryChunks::Chunk;

TEST(HeldEntryChunks, LetsAChunkGoWithItsLastEntry) {
    auto first = std::make_shared<const Chunk>();
    auto third = std::make_shared<const Chunk>();
    const std::weak_ptr<const Chunk> firstAlive = first;
    const std::weak_ptr<const Chunk> thirdAlive = third;
    HeldEntryChunks held;
    held.hold(4, [&] { return std::move(first); });
    held.hold(4, [&]() -> std::shared_ptr<const Chunk> {
        ADD_FAILURE() << "asked again";
        return {};
    });
    held.hold(6, [&] { return std::move(third); }); // a gap at 5
    EXPECT_EQ(held.count(), 2u);
    EXPECT_EQ(held.at(6).get(), thirdAlive.lock().get());

    held.release(4);
    EXPECT_FALSE(firstAlive.expired()); // one entry left in it
    held.release(4);
    EXPECT_TRUE(firstAlive.expired());
    EXPECT_EQ(held.at(6).get(), thirdAlive.lock().get()); // still found after the front went
    held.release(6);
    EXPECT_TRUE(thirdAlive.expired());
    EXPECT_EQ(held.count(), 0u);

    // Held again from empty, and an older chunk before a newer one.
    held.hold(9, [] { return std::make_shared<const Chunk>(); });
    held.hold(2, [] { return std::make_shared<const Chunk>(); });
    EXPECT_EQ(held.count(), 2u);
    EXPECT_NE(held.at(2), nullptr);
    EXPECT_NE(held.at(9), nullptr);
    held.clear();
    EXPECT_EQ(held.count(), 0u);
}
