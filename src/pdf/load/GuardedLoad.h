#pragma once

#include <memory>
#include <string>

namespace PoDoFo {
class PdfMemDocument;
}

namespace VellumLib {

/// How much of a document is asked for.
enum class EPDFExtent {
    Whole,
    /// The catalog, the way to the first page, its boxes and its maps; of a file whose
    /// cross-references are not plain tables more is there.
    FirstPage,
    /// The same, with the boxes that the page inherits.
    FirstPageAsShown
};

/// Loads a PDF from any bytes, within a second and memory in proportion to the file.
///
/// Objects and streams stay in the file until they are asked for: the document keeps
/// the file open for as long as any of its objects may still need it, and the limits
/// stay in force. Throws PoDoFo::PdfError: FileNotFound, InvalidPassword for every
/// encrypted file whatever its cipher, OutOfMemory or BrokenFile for what the file
/// asks beyond its means, and the parser's own errors for the rest.
/// A file of plain tables whose first page alone is asked for as it is shown is read where
/// `password` opens it, if its cipher is AES-256.
std::unique_ptr<PoDoFo::PdfMemDocument> LoadGuarded(const std::string& utf8_path,
                                                    EPDFExtent extent = EPDFExtent::Whole,
                                                    const std::string& password = {});

/// The first page of a file whose cross-references cannot be used, with its boxes and maps:
/// its objects are searched for in its bytes. Null where there is no such page; throws
/// nothing but what is thrown for want of memory.
std::unique_ptr<PoDoFo::PdfMemDocument> LoadBySearch(const std::string& utf8_path);

}  // namespace VellumLib
