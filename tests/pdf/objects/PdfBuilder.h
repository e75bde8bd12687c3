#pragma once

#include "PlainPdf.h"

#include <cstdint>
#include <string>
#include <vector>

/// Puts PDF files together byte by byte, right ones and wrong ones.
class PdfBuilder {
public:
    explicit PdfBuilder(const std::string& version = "1.5") : text_("%PDF-" + version + "\n") {}

    /// Appends an object with the next number and returns the number.
    int Add(const std::string& body) { return AddAs(static_cast<int>(offsets_.size()), body); }
    /// The same, with another number in the object's own head.
    int AddAs(int head, const std::string& body);
    /// An object with a stream; `keys` go into its dictionary beside the length.
    int AddStream(const std::string& keys, const std::string& data) {
        return Add(PdfStreamObject(data, keys));
    }
    /// Catalog and page tree, objects 1 and 2, and a page with these keys, object 3.
    void AddPage(const std::string& keys = "");

    std::int64_t Position() const { return static_cast<std::int64_t>(text_.size()); }
    int NextNumber() const { return static_cast<int>(offsets_.size()); }
    void Append(const std::string& text) { text_ += text; }

    std::string Table() const;
    /// Table, trailer and end; `keys` follow "Root" and "Size" in the trailer.
    std::string Finish(const std::string& keys = "");
    /// The same with a cross-reference stream. `compressed` names the object stream of
    /// each of the numbers that follow those with a place.
    std::string FinishWithStream(const std::vector<int>& compressed = {}, const std::string& keys = "");
    /// Ends the file with a reference to `start`.
    std::string End(std::int64_t start) const;

private:
    std::string text_;
    std::vector<std::int64_t> offsets_{0};
};

/// A file with the page of these keys.
inline PdfBuilder WithPage(const std::string& keys = "") {
    PdfBuilder file;
    file.AddPage(keys);
    return file;
}

std::string Deflated(const std::string& data);
/// Compressed zeros, without ever holding them.
std::string DeflatedZeros(std::size_t mebibytes);
/// The keys "N" and "First", and the content: "number offset" pairs, then the objects.
struct ObjectStream {
    std::string keys;
    std::string content;
};
ObjectStream MakeObjectStream(const std::vector<int>& numbers, const std::vector<std::string>& objects);
inline std::string Nested(const std::string& open, const std::string& close, std::size_t depth) {
    return Repeated(open, depth) + "1" + Repeated(close, depth);
}
