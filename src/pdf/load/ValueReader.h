#pragma once

#include "load/FileWindow.h"

#include <podofo/podofo.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace VellumLib {

/// Throws a PdfError unless `held`: the file is for another reader.
void RequirePlain(bool held);

/// Reads values and what is between them from any place of a file, within the limits of one
/// load. Whatever is too deep, too large or not what was asked for ends in a PdfError.
class ValueReader {
public:
    explicit ValueReader(FileWindow& file);
    ~ValueReader();
    ValueReader(const ValueReader&) = delete;
    ValueReader& operator=(const ValueReader&) = delete;

    FileWindow& File() { return file_; }
    /// Gives the position behind the value.
    std::int64_t ReadValue(std::int64_t position, PoDoFo::PdfVariant& value);
    /// Reads the value of an object whose head must be at the offset. Gives the position behind it;
    /// `begin`, when given, becomes the position of the value.
    std::int64_t ReadObject(std::int64_t offset, const PoDoFo::PdfReference& reference,
                            PoDoFo::PdfVariant& value, std::int64_t* begin = nullptr);

    // These step over what is at the position.
    void SkipWhite(std::int64_t& position);
    std::int64_t TakeNumber(std::int64_t& position);
    bool TakeWord(std::int64_t& position, std::string_view word);

private:
    class Tokenizer;

    FileWindow& file_;
    std::size_t text_ = 0;      ///< bytes of values so far
    std::uint64_t copies_ = 0;  ///< what parsing them has cost
    std::unique_ptr<Tokenizer> tokenizer_;
};

}  // namespace VellumLib
