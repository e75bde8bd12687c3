#include "objects/ContentReader.h"

#include <string_view>

namespace VellumLib {

using PoDoFo::PdfObject;

namespace {

constexpr std::size_t kMostBytes = std::size_t{256} * 1024 * 1024;
/// The reader's time grows with the square of it; property lists nest two or three deep.
constexpr int kDeepestOperand = 100;

/// Keeps or only counts what a filter writes, up to a limit over all of its streams.
class BoundedOutput : public PoDoFo::PdfOutputStream {
public:
    explicit BoundedOutput(std::string* bytes) : bytes_(bytes) {}

    PoDoFo::pdf_long Write(const char* buffer, PoDoFo::pdf_long length) override {
        const auto size = static_cast<std::size_t>(length);
        if (size > kMostBytes - count_) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_OutOfMemory);
        count_ += size;
        if (bytes_) bytes_->append(buffer, size);
        return length;
    }
    void Close() override {}
    std::size_t Count() const { return count_; }

private:
    std::string* bytes_;
    std::size_t count_ = 0;
};

void Decode(const PdfObject* holder, BoundedOutput& out) {
    if (!holder || !holder->HasStream()) return;
    holder->GetStream()->GetFilteredCopy(&out);
    // The end of a stream is a boundary of tokens.
    out.Write("\n", 1);
}

}  // namespace

std::string DecodeContents(const PoDoFo::PdfVecObjects* objects, const PdfObject* contents) {
    std::string bytes;
    BoundedOutput out(&bytes);
    Decode(contents, out);
    if (objects && contents && contents->IsArray())
        for (const PdfObject& part : contents->GetArray())
            if (part.IsReference()) Decode(objects->GetObject(part.GetReference()), out);
    return bytes;
}

std::size_t CountDecodedBytes(const PdfObject* holder) {
    if (!holder || !holder->HasStream()) return 0;
    BoundedOutput out(nullptr);
    holder->GetStream()->GetFilteredCopy(&out);
    return out.Count();
}

ContentTokenizer::ContentTokenizer(const std::string& content)
    : PdfContentsTokenizer(content.c_str(), static_cast<long>(content.size())) {}

bool ContentTokenizer::GetNextToken(const char*& token, PoDoFo::EPdfTokenType* type) {
    if (!PdfContentsTokenizer::GetNextToken(token, type)) return false;
    const std::string_view text(token);
    if (text == "<<" || text == "[") ++depth_;
    if ((text == ">>" || text == "]") && depth_ > 0) --depth_;
    if (depth_ > kDeepestOperand) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_ValueOutOfRange);
    return true;
}

}  // namespace VellumLib
