#include "crs/LruCache.h"

#include <gtest/gtest.h>

#include <memory>

namespace Tellurion {
namespace {

TEST(LruCache, KeepsWhatWasUsedLastAndThatThereIsNothing) {
    using Cache = LruCache<std::shared_ptr<int>>;
    Cache cache(2);
    int made = 0;
    const auto get = [&](const std::u16string& text) {
        return *cache.Get(text, [&] { return std::make_shared<int>(++made); });
    };
    EXPECT_EQ(get(u"a"), 1);
    EXPECT_EQ(get(u"b"), 2);
    EXPECT_EQ(get(u"a"), 1);
    EXPECT_EQ(get(u"c"), 3);  // b was used longest ago
    EXPECT_EQ(get(u"a"), 1);
    EXPECT_EQ(get(u"b"), 4);
    EXPECT_EQ(get(std::u16string(Cache::kLongestText + 1, u'x')), 5);  // not kept
    EXPECT_EQ(get(u"a"), 1);
    EXPECT_EQ(cache.Size(), 2U);
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(cache.Get(u"none", [&] { return ++made == 6 ? nullptr : std::make_shared<int>(1); }));
}

}  // namespace
}  // namespace Tellurion
