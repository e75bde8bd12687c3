#pragma once

#include "wide/WideRemarks.h"
#include "wide/WideValue.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace VellumLib {

/// A page as viewers see it: what it inherits counts as its own, and a box has its lower
/// left corner first.
struct WidePage {
    /// Left, bottom, right, top.
    using Box = std::array<double, 4>;

    WideValue dictionary;
    std::optional<Box> media;
    std::optional<Box> crop;
    std::optional<Box> bleed;
    std::optional<Box> trim;
    std::optional<Box> art;
    int rotate = 0;          ///< clockwise: 0, 90, 180 or 270
    double user_unit = 1.0;  ///< in 1/72 inch
    WideRemarks remarks;     ///< on its boxes
};

/// The pages of a document in the order of the page tree, found by its nodes and not by
/// their counts, which may be wrong. Bounded, whatever the tree looks like.
class WidePages {
public:
    static constexpr std::size_t kMaxPages = 20'000;

    explicit WidePages(const WideValue& catalog);

    std::size_t Count() const { return leaves_.size(); }
    /// As the document states it, where that is more than what was found.
    long StatedCount() const;
    /// False where the document has more pages than are looked at.
    bool Complete() const { return complete_; }
    WidePage Page(std::size_t index) const;

private:
    struct Leaf {
        WideValue node;
        std::vector<WideValue> parents;  ///< the nearest last
    };

    std::vector<Leaf> leaves_;
    long stated_ = 0;
    bool complete_ = true;
};

}  // namespace VellumLib
