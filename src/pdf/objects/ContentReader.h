#pragma once

#include <podofo/podofo.h>

#include <string>

namespace VellumLib {

/// The bytes of a content stream, or of an array of them as one, with their filters
/// undone. What has no stream counts as empty. Throws a PdfError (out of memory)
/// where the bytes are more than a drawing can need.
std::string DecodeContents(const PoDoFo::PdfVecObjects* objects, const PoDoFo::PdfObject* contents);

/// How many bytes a stream has with its filters undone; 0 without a stream. Has the
/// limit of DecodeContents and keeps no bytes.
std::size_t CountDecodedBytes(const PoDoFo::PdfObject* holder);

/// A tokenizer of decoded content that refuses operands nested too deeply for a
/// reader that works by recursion.
class ContentTokenizer : public PoDoFo::PdfContentsTokenizer {
public:
    explicit ContentTokenizer(const std::string& content);
    bool GetNextToken(const char*& token, PoDoFo::EPdfTokenType* type = nullptr) override;

private:
    int depth_ = 0;
};

}  // namespace VellumLib
