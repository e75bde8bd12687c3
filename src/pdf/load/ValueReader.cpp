#include "load/ValueReader.h"

#include "load/LoadBudget.h"
#include "load/SyntaxTracker.h"

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::size_t kText = std::size_t{8} * 1024 * 1024;
constexpr std::int64_t kWhite = 1000;
constexpr std::int64_t kReferenceText = 48;
// As the parser has it.
constexpr std::size_t kLongestToken = 4096;
constexpr std::int64_t kLargest = 9'999'999'999;

bool IsWhite(int byte) {
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t' || byte == '\f' || byte == 0;
}

bool IsDigit(int byte) {
    return byte >= '0' && byte <= '9';
}

/// A piece of the file as the tokenizer's input.
class PieceDevice final : public PdfInputDevice {
public:
    explicit PieceDevice(FileWindow& file) : file_(file) {}

    void Restrict(std::int64_t begin, std::int64_t end) {
        position_ = begin;
        end_ = end;
    }
    std::streamoff Tell() const override { return position_; }
    int GetChar() const override {
        const int byte = Look();
        if (byte >= 0) ++position_;
        return byte;
    }
    int Look() const override { return position_ < end_ ? file_.At(position_) : -1; }
    bool Eof() const override { return Look() < 0; }
    bool Bad() const override { return false; }
    void Clear(std::ios_base::iostate) const override {}

private:
    FileWindow& file_;
    mutable std::int64_t position_ = 0;
    std::int64_t end_ = 0;
};

}  // namespace

void RequirePlain(bool held) {
    if (!held) RefusePdf(ePdfError_InvalidXRef, "The cross-references are not plain.");
}

/// One for many values: it takes longer to make than to use.
class ValueReader::Tokenizer {
public:
    explicit Tokenizer(FileWindow& file) : device_(new PieceDevice(file)) {}
    Tokenizer(const Tokenizer&) = delete;
    Tokenizer& operator=(const Tokenizer&) = delete;

    void Read(std::int64_t begin, std::int64_t end, PdfVariant& value) {
        device_->Restrict(begin, end);
        tokenizer_.GetNextVariant(value, nullptr);
    }

private:
    PieceDevice* device_;  ///< the tokenizer's
    PdfTokenizer tokenizer_{PdfRefCountedInputDevice(device_), PdfRefCountedBuffer(kLongestToken)};
};

ValueReader::ValueReader(FileWindow& file) : file_(file) {}

ValueReader::~ValueReader() = default;

std::int64_t ValueReader::ReadObject(std::int64_t offset, const PdfReference& reference, PdfVariant& value,
                                     std::int64_t* begin) {
    std::int64_t position = offset;
    RequirePlain(IsDigit(file_.At(offset)));
    RequirePlain(TakeNumber(position) == static_cast<std::int64_t>(reference.ObjectNumber()));
    RequirePlain(TakeNumber(position) == reference.GenerationNumber() && TakeWord(position, "obj"));
    if (begin) {
        SkipWhite(position);
        *begin = position;
    }
    return ReadValue(position, value);
}

/// The extent of the value is found first, so that the tokenizer never meets one that
/// is too deep or too large for it.
std::int64_t ValueReader::ReadValue(std::int64_t position, PdfVariant& value) {
    const ObjectLimits limits(file_.Size());
    SyntaxTracker tracker;
    std::int64_t end = position;
    while (!tracker.ValueEnded()) {
        const int byte = file_.At(end);
        RequirePlain(byte >= 0 && ++text_ < kText);
        ++end;
        tracker.Consume(static_cast<unsigned char>(byte));
        RequirePlain(tracker.Depth() <= LoadBudget::kDeepest && limits.Allow(tracker, copies_));
    }
    copies_ += tracker.CopyCost();
    if (!tokenizer_) tokenizer_ = std::make_unique<Tokenizer>(file_);
    // A number may turn out to be the first of a reference.
    tokenizer_->Read(position, end + kReferenceText, value);
    // Behind a number the tokenizer keeps what it has seen of the next words.
    if (!value.IsDictionary() && !value.IsArray()) tokenizer_.reset();
    return end;
}

void ValueReader::SkipWhite(std::int64_t& position) {
    const std::int64_t start = position;
    while (IsWhite(file_.At(position)))
        RequirePlain(++position - start < kWhite);
}

std::int64_t ValueReader::TakeNumber(std::int64_t& position) {
    SkipWhite(position);
    RequirePlain(IsDigit(file_.At(position)));
    std::int64_t number = 0;
    for (int byte = file_.At(position); IsDigit(byte); byte = file_.At(++position)) {
        number = number * 10 + (byte - '0');
        RequirePlain(number <= kLargest);
    }
    return number;
}

bool ValueReader::TakeWord(std::int64_t& position, std::string_view word) {
    SkipWhite(position);
    std::int64_t at = position;
    for (const char byte : word) {
        if (file_.At(at) != byte) return false;
        ++at;  // only now: a file may name any number as a place
    }
    position = at;
    return true;
}

}  // namespace VellumLib
