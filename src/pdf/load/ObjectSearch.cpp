#include "load/ObjectSearch.h"

#include "load/FileWindow.h"
#include "load/LoadBudget.h"

#include <Tellurion/Ascii.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace VellumLib {
namespace {

using Tellurion::IsDigit;

constexpr std::int64_t kMaxFile = std::int64_t{512} * 1024 * 1024;
constexpr std::size_t kPiece = std::size_t{1024} * 1024;
/// Room for the head of an object before its last word.
constexpr std::size_t kHead = 64;
constexpr std::size_t kMaxTrailers = 1000;

bool IsWhite(char byte) {
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t' || byte == '\f' || byte == 0;
}

/// Steps back over the number that ends before `end`, and the blanks behind it; -1 for none.
std::int64_t NumberBefore(std::string_view text, std::size_t& end) {
    while (end > 0 && IsWhite(text[end - 1]))
        --end;
    constexpr std::size_t kMaxDigits = 10;
    std::size_t begin = end;
    while (begin > 0 && IsDigit(text[begin - 1]))
        --begin;
    if (begin == end || end - begin > kMaxDigits) return -1;
    std::int64_t number = 0;
    for (std::size_t i = begin; i < end; ++i)
        number = number * 10 + (text[i] - '0');
    end = begin;
    return number;
}

class Search {
public:
    explicit Search(FileWindow& file) : file_(file) {}

    FoundObjects Run() {
        if (file_.Size() > kMaxFile)
            RefusePdf(PoDoFo::ePdfError_OutOfMemory, "The file is too large to be searched for objects.");
        if (!HasHeader()) RefusePdf(PoDoFo::ePdfError_NoPdfFile, "The file has no header of a PDF.");
        std::string text;
        std::int64_t start = 0;
        for (std::int64_t next = 0; next < file_.Size();) {
            const std::size_t kept = std::min(text.size(), kHead);
            text.erase(0, text.size() - kept);
            start = next - static_cast<std::int64_t>(kept);
            text.resize(kept + kPiece);
            const std::size_t got = file_.Read(next, text.data() + kept, kPiece);
            text.resize(kept + got);
            if (got == 0) break;
            Look(text, start, kept);
            next += static_cast<std::int64_t>(got);
        }
        return std::move(found_);
    }

private:
    /// Viewers look for it near the beginning.
    bool HasHeader() {
        constexpr std::size_t kNear = 1024;
        std::string head(kNear, '\0');
        head.resize(file_.Read(0, head.data(), kNear));
        return head.find("%PDF-") != std::string::npos;
    }
    /// The words that end behind the part that was looked at before.
    void Look(std::string_view text, std::int64_t start, std::size_t known) {
        for (std::size_t at = 0; at < text.size(); ++at) {
            const char byte = text[at];
            if (byte != 'o' && byte != '/' && byte != 't') continue;
            if (Ends(text, at, "obj", known)) TakeHead(text, at, start);
            if (Ends(text, at, "/Catalog", known)) found_.catalog = last_;
            if (Ends(text, at, "/Encrypt", known)) found_.encrypted = true;
            if (Ends(text, at, "trailer", known) && found_.trailers.size() < kMaxTrailers)
                found_.trailers.push_back(start + static_cast<std::int64_t>(at + 7));
        }
    }
    static bool Ends(std::string_view text, std::size_t at, std::string_view word, std::size_t known) {
        return text.substr(at, word.size()) == word && at + word.size() > known;
    }
    void TakeHead(std::string_view text, std::size_t word, std::int64_t start) {
        std::size_t at = word;
        const std::int64_t generation = NumberBefore(text, at);
        if (generation < 0 || generation > 65535 || at == 0 || !IsWhite(text[at - 1])) return;
        const std::int64_t number = NumberBefore(text, at);
        if (number <= 0 || number >= LoadBudget::kObjectNumbers) return;
        last_ = static_cast<std::uint32_t>(number);
        found_.objects[last_] = {start + static_cast<std::int64_t>(at), generation};
    }

    FileWindow& file_;
    FoundObjects found_;
    std::uint32_t last_ = 0;
};

}  // namespace

FoundObjects SearchObjects(FileWindow& file) {
    return Search(file).Run();
}

}  // namespace VellumLib
