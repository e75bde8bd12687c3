#include "wide/WidePages.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace VellumLib {
namespace {

using Box = WidePage::Box;

constexpr std::size_t kMaxNodes = 40'000;
constexpr std::size_t kMaxDepth = 64;

struct Found {
    WideValue value;
    bool inherited = false;
};

/// The value of the page, or of the nearest node above it.
Found Inherited(const WideValue& page, const std::vector<WideValue>& parents, const char* key) {
    if (const WideValue own = page[key]) return {own, false};
    for (std::size_t i = parents.size(); i > 0; --i)
        if (const WideValue value = parents[i - 1][key]) return {value, true};
    return {};
}

std::optional<Box> BoxIn(const WideValue& value) {
    constexpr std::size_t kNumbers = 4;
    if (value.Size() < kNumbers) return std::nullopt;
    Box box{};
    for (std::size_t i = 0; i < kNumbers; ++i) {
        const std::optional<double> number = value.At(i).Number();
        if (!number) return std::nullopt;
        box[i] = *number;
    }
    if (box[0] > box[2]) std::swap(box[0], box[2]);
    if (box[1] > box[3]) std::swap(box[1], box[3]);
    return box;
}

bool IsReversed(const WideValue& value) {
    return value.At(0).Number() > value.At(2).Number() || value.At(1).Number() > value.At(3).Number();
}

std::optional<Box> ReadBox(const Found& found, const char* key, WideRemarks& remarks) {
    if (!found.value) return std::nullopt;
    std::optional<Box> box = BoxIn(found.value);
    const std::string name = std::string("\"") + key + "\"";
    if (!box) {
        remarks.Beyond("box-numbers", name + " of the page is not an array of four numbers; it is ignored.");
        return box;
    }
    if (found.inherited)
        remarks.Beyond("box-own", name + " is expected in the page itself; here the page inherits it.");
    if (found.value.WasReference())
        remarks.Beyond("box-in-place",
                       name + " is expected to be an array in place; here it is a reference.");
    if (HoldsStrings(found.value))
        remarks.Beyond("box-strings", name + " is expected to hold numbers; here they are strings.");
    if (found.value.Size() > box->size())
        remarks.Beyond("box-numbers", name + " is expected to hold four numbers; here it holds more.");
    if (IsReversed(found.value))
        remarks.Beyond("box-order",
                       name + " is expected to begin with its lower left corner; here it does not.");
    return box;
}

/// To the next quarter turn.
int TurnOf(const WideValue& value) {
    constexpr double kQuarter = 90.0;
    constexpr double kTurns = 4.0;
    const double quarters = std::round(value.Number().value_or(0.0) / kQuarter);
    const int turns = static_cast<int>(std::fmod(quarters, kTurns));
    return (turns < 0 ? turns + 4 : turns) * 90;
}

bool IsLeaf(const WideValue& node) {
    return node.IsDictionary() && !node["Kids"].IsArray();
}

}  // namespace

WidePages::WidePages(const WideValue& catalog) {
    struct Step {
        WideValue node;
        std::size_t next = 0;
    };
    std::vector<Step> path{{catalog["Pages"]}};
    constexpr double kMostStated = 1e6;
    stated_ =
        static_cast<long>(std::clamp(path.back().node["Count"].Number().value_or(0.0), 0.0, kMostStated));
    std::set<const PoDoFo::PdfObject*> seen{path.back().node.Object()};
    std::size_t nodes = 0;
    while (!path.empty()) {
        const WideValue kids = path.back().node["Kids"];
        if (path.back().next >= kids.Size()) {
            path.pop_back();
            continue;
        }
        const WideValue kid = kids.At(path.back().next++);
        if (!kid.IsDictionary() || !seen.insert(kid.Object()).second) continue;
        if (++nodes > kMaxNodes || leaves_.size() >= kMaxPages) {
            complete_ = false;
            return;
        }
        if (IsLeaf(kid)) {
            Leaf leaf{kid, {}};
            for (const Step& step : path)
                leaf.parents.push_back(step.node);
            leaves_.push_back(std::move(leaf));
        } else if (path.size() < kMaxDepth) {
            path.push_back({kid});
        }
    }
}

long WidePages::StatedCount() const {
    return std::max(stated_, static_cast<long>(leaves_.size()));
}

WidePage WidePages::Page(std::size_t index) const {
    const auto& [node, parents] = leaves_.at(index);
    WidePage page;
    page.dictionary = node;
    page.media = ReadBox(Inherited(node, parents, "MediaBox"), "MediaBox", page.remarks);
    page.crop = ReadBox(Inherited(node, parents, "CropBox"), "CropBox", page.remarks);
    page.bleed = ReadBox({node["BleedBox"]}, "BleedBox", page.remarks);
    page.trim = ReadBox({node["TrimBox"]}, "TrimBox", page.remarks);
    page.art = ReadBox({node["ArtBox"]}, "ArtBox", page.remarks);
    page.rotate = TurnOf(Inherited(node, parents, "Rotate").value);
    const double unit = node["UserUnit"].Number().value_or(1.0);
    page.user_unit = unit > 0.0 ? unit : 1.0;
    return page;
}

}  // namespace VellumLib
