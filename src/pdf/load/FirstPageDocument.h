#pragma once

#include <memory>

namespace PoDoFo {
class PdfMemDocument;
}

namespace VellumLib {

class FileWindow;

/// The first page alone: the catalog, the way down the page tree, the page, and what its
/// boxes and maps refer to. The parser's cost grows with the number of a file's objects,
/// whatever is asked of it; this one's with what is asked.
///
/// Null for a file that is not plain, encrypted, with cross-reference streams or anything
/// amiss on the way: such a file is for the parser. What its boxes are referred to by a node
/// above the page is there where `inherited` asks for it.
std::unique_ptr<PoDoFo::PdfMemDocument> LoadFirstPage(FileWindow& file, bool inherited);

/// The same of a file whose cross-references cannot be used: its objects are searched for in
/// its bytes. Null where that does not lead to a page either.
std::unique_ptr<PoDoFo::PdfMemDocument> SearchFirstPage(FileWindow& file);

}  // namespace VellumLib
