#pragma once

#include "load/FileWindow.h"
#include "load/LoadBudget.h"
#include "load/SyntaxTracker.h"

#include <cstdint>
#include <ios>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace VellumLib {

/// A PDF file as the parser reads it, with the parser's steps followed on the
/// way: whatever the file makes the parser do passes through here first. Sees
/// encryption in every trailer, looks into streams before they are decoded, and
/// charges the document's budget. Behaves like a C file in all that it does not
/// refuse.
class GuardedReader {
public:
    explicit GuardedReader(std::unique_ptr<FileWindow> file);

    int Get();
    int Peek() { return file_.At(position_); }
    std::int64_t Tell();
    void Seek(std::int64_t offset, std::ios_base::seekdir from);
    std::size_t Read(char* target, std::int64_t count);
    bool AtEnd() const { return at_end_; }

    /// From here on objects come when they are asked for.
    void EndLoading();
    /// False for a file without the end marker near its end; nothing is looked
    /// for there by stepping back through all of it.
    bool HasEndMarker();
    bool HasHeader() { return HasText(0, "%PDF-"); }

private:
    void CheckObject();
    void TakeDictionary();
    void InspectStreamAt(std::int64_t start);
    void TakeRead(std::int64_t start, const char* data, std::int64_t count, std::size_t got);
    void TakeTableEntry(std::int64_t start, const char* data, std::size_t size);
    void TakeObjectHead();
    void NoteStream();
    std::int64_t DataStart(std::int64_t position);
    bool HasText(std::int64_t position, std::string_view text);
    void SettleValues();
    template <typename Step>
    void Guard(Step step);

    std::unique_ptr<FileWindow> held_;
    FileWindow& file_;
    LoadBudget budget_;
    SyntaxTracker tracker_;
    std::int64_t position_ = 0;
    bool at_end_ = false;
    bool loading_ = true;
    /// What ended the load: the parser skips objects that fail, so it is said
    /// again.
    std::optional<PoDoFo::PdfError> refusal_;
    std::string dictionary_;
    bool dictionary_cut_ = false;
    /// Dictionaries with a stream, by the place of the stream's data.
    std::map<std::int64_t, std::string> streams_;
    /// The places behind the heads of objects, by number.
    std::unordered_map<std::int64_t, std::int64_t> heads_;
    std::int64_t table_next_ = -1;
    std::int64_t table_number_ = 0;
};

}  // namespace VellumLib
