#pragma once

#include "load/Decryption.h"
#include "load/ObjectSource.h"
#include "load/ValueReader.h"
#include "load/XRefLayout.h"

#include <podofo/podofo.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace VellumLib {

/// The cross-references of a file in every form, tables and streams, and the objects that they
/// lead to, those in object streams among them. A row is looked at when it is asked for, a table
/// stays in the file, and of the object streams those alone are decoded that hold what is asked
/// for.
///
///     startxref -> newest section -> Prev -> Prev ...
///                  table:  rows of 20 bytes, and perhaps a stream with further entries (XRefStm)
///                  stream: entries, decoded
///
/// Every doubt ends in a PdfError. An encrypted file that no password opens shows its trailer alone.
class CrossReferences final : public ObjectSource {
public:
    /// With a password, which may be empty, an encrypted file that it opens shows all of its objects.
    explicit CrossReferences(FileWindow& file, const std::optional<std::string>& password = std::nullopt);
    ~CrossReferences() override;

    const PoDoFo::PdfDictionary& Trailer() const override { return trailer_.GetDictionary(); }
    void RequireObject(const PoDoFo::PdfReference& reference) override { Find(reference); }
    void Read(PoDoFo::PdfObject& object) override;
    bool IsUnlocked() const override { return decryption_ != nullptr; }

    bool IsEncrypted() const { return Trailer().HasKey("Encrypt"); }
    /// Where the newest section begins, as the end of the file has it.
    std::int64_t NewestSection() const { return newest_; }
    /// The newest section is a stream, and not a table.
    bool EndsInStream() const { return ends_in_stream_; }
    /// A number that no object has, nor any above it.
    std::int64_t FirstFreeNumber() const;
    /// The dictionary of the newest section as it is in the file.
    const std::string& TrailerText() const { return trailer_text_; }
    /// The value of an object as it is in the file or in its object stream.
    std::string TextOf(const PoDoFo::PdfReference& reference);
    /// The decoded stream of an object, up to `limit` bytes; empty for an object without one.
    std::string StreamOf(const PoDoFo::PdfReference& reference, std::uint64_t limit);

private:
    struct Subsection {
        std::int64_t first;
        std::int64_t count;
        std::int64_t rows;   ///< of a table: the place in the file
        int decoded;         ///< of a stream: its index among the decoded ones; -1 of a table
        std::size_t offset;  ///< and the place in there
    };
    struct Decoded {
        XRefLayout layout;
        std::string entries;
    };
    struct ObjectStream {
        std::string content;
        std::size_t first = 0;
        std::vector<std::pair<std::uint64_t, std::uint64_t>> head;  ///< numbers and offsets
    };
    struct Extent {
        const std::string* content;
        std::size_t begin;
        std::size_t end;
    };

    PoDoFo::PdfVariant ReadSection(std::int64_t start);
    PoDoFo::PdfVariant ReadTable(std::int64_t position);
    PoDoFo::PdfVariant ReadStreamSection(std::int64_t start);
    void AddSubsection(const Subsection& subsection);
    XRefEntry RowAt(std::int64_t position);
    XRefEntry Find(const PoDoFo::PdfReference& reference);
    std::string DecodeAt(std::int64_t position, const PoDoFo::PdfVariant& dictionary, std::uint64_t limit,
                         Decryption* decryption);
    const ObjectStream& StreamOfNumber(std::uint64_t number);
    Extent ExtentOf(const XRefEntry& entry, std::uint64_t number);
    std::string CopyOf(std::int64_t begin, std::int64_t end);

    FileWindow& file_;
    ValueReader values_;
    std::vector<Subsection> subsections_;  ///< those of newer sections first
    std::vector<Decoded> decoded_;
    std::map<std::uint64_t, ObjectStream> streams_;  ///< the last ones that were asked for
    std::size_t kept_ = 0;                           ///< bytes of them
    std::uint64_t decoded_bytes_ = 0;                ///< of all streams so far
    std::uint64_t copies_ = 0;                       ///< what parsing their values has cost
    std::int64_t newest_ = 0;
    bool ends_in_stream_ = false;
    PoDoFo::PdfVariant trailer_;
    std::string trailer_text_;
    std::unique_ptr<Decryption> decryption_;  ///< of an encrypted file
};

}  // namespace VellumLib
