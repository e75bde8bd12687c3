#pragma once

#include "load/Decryption.h"
#include "load/FileWindow.h"
#include "load/ObjectSearch.h"
#include "load/ObjectSource.h"
#include "load/ValueReader.h"

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
class PlainTables final : public ObjectSource {
public:
    /// With a password, which may be empty, a file that it opens is read too.
    explicit PlainTables(FileWindow& file, const std::optional<std::string>& password = std::nullopt);
    /// In place of tables that cannot be used: the objects that a search finds, and the
    /// trailer or catalog among them.
    PlainTables(FileWindow& file, FoundObjects found);
    ~PlainTables() override;

    const PoDoFo::PdfDictionary& Trailer() const override { return trailer_.GetDictionary(); }
    bool IsUnlocked() const override { return decryption_ != nullptr; }
    /// That an object does not exist is for the parser to find: it goes by the head of an
    /// object where a table has it otherwise.
    void RequireObject(const PoDoFo::PdfReference& reference) override { Find(reference); }
    void Read(PoDoFo::PdfObject& object) override { ReadObject(Find(object.Reference()), object); }

private:
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

    PoDoFo::PdfVariant ReadSection(std::int64_t start);
    Row RowAt(std::int64_t position);
    std::int64_t Find(const PoDoFo::PdfReference& reference);
    void ReadObject(std::int64_t offset, PoDoFo::PdfObject& object);

    FileWindow& file_;
    ValueReader values_;
    FoundObjects found_;                   ///< where they stand in for the tables
    std::vector<Subsection> subsections_;  ///< those of newer sections first
    std::int64_t last_trailer_ = -1;       ///< in the file, while no section has led to it
    PoDoFo::PdfVariant trailer_;
    std::unique_ptr<Decryption> decryption_;  ///< of an encrypted file
};

}  // namespace VellumLib
