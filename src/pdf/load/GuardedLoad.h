#pragma once

#include <memory>
#include <string>

namespace PoDoFo {
class PdfMemDocument;
}

/// How a PDF of unknown origin is opened
/// -------------------------------------
/// PoDoFo parses PDF, but it trusts its input: a small file can make it allocate gigabytes, recurse
/// until the stack is gone, or decode without end. This folder puts a guard between the file and the
/// parser, and it answers the common question, which is about the first page, without the parser.
///
///     file --> FileWindow --+--> PlainTables, FirstPageDocument --------------> document with
///                           |         | not plain           ^                   the first page
///                           |         v                     | ObjectSearch
///                           |    a damaged file, in the wide reading
///                           |
///                           +--> GuardedReader --> GuardedDevice --> PoDoFo --> whole document
///                                  |       |
///                         SyntaxTracker   StreamInspection, ObjectStreamContent
///                                  |       |
///                                 LoadBudget
///
/// - FileWindow reads the file by position through two windows. Another process may cut the file
///   short meanwhile; the end then comes early and nothing crashes.
/// - PlainTables finds single objects through cross-reference tables, and FirstPageDocument collects
///   the catalog, the page tree down to the first page, the page, its boxes and its maps. The cost
///   depends on these few objects, not on the size of the file. Any doubt ends this path, and the
///   file goes to the parser.
/// - ObjectSearch replaces cross-references that cannot be used: it finds objects in the bytes.
/// - GuardedReader sees each byte that PoDoFo asks for. SyntaxTracker follows the syntax of what is
///   read and counts nesting and values; StreamInspection decodes a stream in a bounded way before
///   PoDoFo does. Both charge LoadBudget, which knows the size of the file and refuses (RefusePdf)
///   what no honest file of that size needs.
/// - The guard stays in place after loading, because PoDoFo reads objects and streams on demand: the
///   document owns the device, the device owns the reader and the open file.
/// - PoDoFoSettings changes PoDoFo's global settings for the length of one call and puts the host's
///   settings back.
///
/// GuardedLoad.h is the entrance: LoadGuarded() and LoadBySearch().

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
