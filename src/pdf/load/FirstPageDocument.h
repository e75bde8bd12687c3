#pragma once

#include <memory>
#include <optional>
#include <string>

namespace PoDoFo {
class PdfMemDocument;
}

namespace VellumLib {

class FileWindow;

/// What a read beyond the rules asks for besides.
struct FirstPageWishes {
    bool inherited = false;               ///< what the boxes of the nodes above the page refer to
    std::optional<std::string> password;  ///< opens an encrypted file; may be empty
};

/// The first page alone: the catalog, the way down the page tree, the page, and what its
/// boxes and maps refer to. The parser's cost grows with the number of a file's objects,
/// whatever is asked of it; this one's with what is asked.
///
/// Null for a file that is not plain, encrypted, with cross-reference streams or anything
/// amiss on the way: such a file is for the parser.
std::unique_ptr<PoDoFo::PdfMemDocument> LoadFirstPage(FileWindow& file, const FirstPageWishes& wishes);

/// True of a document that a password has opened.
bool WasUnlocked(const PoDoFo::PdfMemDocument& document);

/// The same of a file whose cross-references cannot be used: its objects are searched for in
/// its bytes. Null where that does not lead to a page either.
std::unique_ptr<PoDoFo::PdfMemDocument> SearchFirstPage(FileWindow& file);

}  // namespace VellumLib
