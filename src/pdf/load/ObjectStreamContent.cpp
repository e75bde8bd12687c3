#include "load/ObjectStreamContent.h"

#include "load/SyntaxTracker.h"

#include <podofo/podofo.h>

#include <charconv>
#include <optional>
#include <string_view>

namespace VellumLib {

namespace {

using namespace PoDoFo;

std::int64_t DirectNumber(const PdfDictionary& dictionary, const char* key) {
    const PdfObject* const entry = dictionary.GetKey(key);
    if (!entry) return 0;
    if (!entry->IsNumber()) RefusePdf(ePdfError_InvalidDataType, "An object stream has no plain numbers.");
    return entry->GetNumber();
}

/// The numbers at the head of an object stream, one after the other.
class Head {
public:
    explicit Head(std::string_view content) : content_(content) {}
    /// None where the next token is no number: the parser stops there too.
    std::optional<std::int64_t> Next() {
        tracker_.ForgetWords();
        while (at_ < content_.size()) {
            const bool in_word = !tracker_.Word(0).empty();
            const auto byte = static_cast<unsigned char>(content_[at_]);
            const bool ends = in_word && kStops.find(content_[at_]) != std::string_view::npos;
            if (ends) break;
            tracker_.Consume(byte);
            ++at_;
            if (tracker_.Depth() > 0) return {};
        }
        return Number(tracker_.Word(0));
    }

private:
    static constexpr std::string_view kStops{"\0\t\n\f\r ()<>[]{}/%", 16};

    static std::optional<std::int64_t> Number(std::string_view word) {
        if (word.size() > 1 && word[0] == '+') word.remove_prefix(1);
        std::int64_t value = 0;
        const auto result = std::from_chars(word.data(), word.data() + word.size(), value);
        if (result.ec != std::errc()) return {};
        return value;
    }

    std::string_view content_;
    std::size_t at_ = 0;
    SyntaxTracker tracker_;
};

// Returns how many bytes the value takes.
std::size_t WalkValue(std::string_view content, std::size_t start, LoadBudget& budget) {
    SyntaxTracker tracker;
    std::size_t at = start;
    while (at < content.size() && !tracker.ValueEnded()) {
        tracker.Consume(static_cast<unsigned char>(content[at++]));
        if (tracker.Depth() > LoadBudget::kDeepest)
            RefusePdf(ePdfError_BrokenFile, "An object is nested too deep.");
    }
    if (!budget.OneObject().Allow(tracker)) RefusePdf(ePdfError_OutOfMemory, "An object is too large.");
    budget.AddValues(tracker.Values(), tracker.CopyCost());
    return at - start;
}

}  // namespace

void InspectObjectStream(const PdfDictionary& dictionary, const std::string& content, LoadBudget& budget) {
    const std::int64_t count = DirectNumber(dictionary, "N");
    const std::int64_t first = DirectNumber(dictionary, "First");
    if (count <= 0) return;
    if (first < 0 || first > static_cast<std::int64_t>(content.size()))
        RefusePdf(ePdfError_BrokenFile, "An object stream has no objects where it says.");
    budget.OpenObjectStream(static_cast<std::uint64_t>(count));
    Head head(content);
    // Every byte once, were it not for streams whose objects share some.
    std::size_t allowed = 2 * content.size() + 1024;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto number = head.Next();
        const auto offset = head.Next();
        if (!number || !offset) return;
        if (*offset < 0 || *offset > static_cast<std::int64_t>(content.size()) - first)
            RefusePdf(ePdfError_BrokenFile, "An object stream has no object where it says.");
        const std::size_t taken = WalkValue(content, static_cast<std::size_t>(first + *offset), budget);
        if (taken > allowed) RefusePdf(ePdfError_BrokenFile, "The objects of a stream overlap.");
        allowed -= taken;
        budget.InsertObject(static_cast<std::uint64_t>(*number));
    }
}

}  // namespace VellumLib
