#pragma once

#include <cstdint>
#include <string>

namespace VellumLib {

class FileWindow;

/// An end for the file that makes the parser see its first page alone: a table of
/// cross-references to the catalog, the way down the page tree, the page, and what its
/// boxes and maps refer to. Parsing a file costs by the number of its objects, whatever
/// is asked of it; so it does not where there are many.
///
/// Empty for a file with fewer rows of cross-references than `fewest`, and for one that
/// is not plain: such a file is for the parser as it stands.
std::string ExcerptOfFirstPage(FileWindow& file, std::int64_t fewest);

}  // namespace VellumLib
