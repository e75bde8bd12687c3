#include "coordsys/LruCache.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Tellurion {
namespace {

TEST(LruCache, KeepsWhatWasUsedLast) {
    LruCache<std::shared_ptr<int>> cache(2);
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
    EXPECT_EQ(cache.Size(), 2U);
}

TEST(LruCache, IsNotFilledByLongTexts) {
    LruCache<std::shared_ptr<int>> cache(2);
    const std::u16string text(LruCache<std::shared_ptr<int>>::kLongestText + 1, u'x');
    cache.Get(text, [] { return std::make_shared<int>(1); });
    EXPECT_EQ(cache.Size(), 0U);
}

TEST(LruCache, RemembersThatThereIsNothing) {
    LruCache<std::shared_ptr<int>> cache(2);
    int asked = 0;
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(cache.Get(u"none", [&]() -> std::shared_ptr<int> {
            ++asked;
            return nullptr;
        }));
    EXPECT_EQ(asked, 1);
}

}  // namespace
}  // namespace Tellurion
