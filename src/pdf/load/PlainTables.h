#pragma once

#include "load/Decryption.h"
#include "load/FileWindow.h"
#include "load/ObjectSearch.h"

#include <podofo/podofo.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VellumLib {

/// The cross-reference tables of a file and the objects that they lead to, without a
/// look at any row but those that are asked for. Every doubt, a stream of
/// cross-references or encryption among them, ends in a PdfError: the parser proper has
/// its own ways with such files.
class PlainTables {
public:
    /// With a password, which may be empty, a file that it opens is read too.
    explicit PlainTables(FileWindow& file, const std::optional<std::string>& password = std::nullopt);
    /// In place of tables that cannot be used: the objects that a search finds, and the
    /// trailer or catalog among them.
    PlainTables(FileWindow& file, FoundObjects found);
    ~PlainTables();
    PlainTables(const PlainTables&) = delete;
    PlainTables& operator=(const PlainTables&) = delete;

    /// Of the newest section.
    const PoDoFo::PdfDictionary& Trailer() const { return trailer_.GetDictionary(); }
    /// It is encrypted, and the password has opened it.
    bool IsUnlocked() const { return decryption_ != nullptr; }
    /// Where the object is. That it does not exist is for the parser to find: it goes by
    /// the head of an object where a table has it otherwise.
    std::int64_t Find(const PoDoFo::PdfReference& reference);
    /// Reads the object of that number at the offset, without its stream.
    void ReadObject(std::int64_t offset, PoDoFo::PdfObject& object);

private:
    class Tokenizer;
    struct Subsection {
        std::int64_t first;
        std::int64_t count;
        std::int64_t rows;
    };
    /// A row of a table.
    struct Row {
        std::int64_t offset;
        std::int64_t generation;
        bool used;
    };

    std::int64_t FindStart();
    void Unlock(const std::string& password);
    PoDoFo::PdfVariant ReadSection(std::int64_t start);
    Row RowAt(std::int64_t position);
    /// Gives the position behind the value.
    std::int64_t ReadValue(std::int64_t position, PoDoFo::PdfVariant& value);

    // Steps over what stands at the position.
    void SkipWhite(std::int64_t& position);
    std::int64_t TakeNumber(std::int64_t& position);
    bool TakeWord(std::int64_t& position, std::string_view word);

    FileWindow& file_;
    FoundObjects found_;                   ///< where they stand in for the tables
    std::size_t text_ = 0;                 ///< bytes of values so far
    std::uint64_t copies_ = 0;             ///< what parsing them has cost
    std::vector<Subsection> subsections_;  ///< those of newer sections first
    std::int64_t last_trailer_ = -1;       ///< in the file, while no section has led to it
    PoDoFo::PdfVariant trailer_;
    std::unique_ptr<Tokenizer> tokenizer_;
    std::unique_ptr<Decryption> decryption_;  ///< of an encrypted file
};

}  // namespace VellumLib
