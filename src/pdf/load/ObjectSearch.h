#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace VellumLib {

class FileWindow;

/// What a search through the bytes of a file finds, without its cross-references. Of objects
/// with one number the last one counts, as after an update.
struct FoundObjects {
    struct Place {
        std::int64_t offset = 0;
        std::int64_t generation = 0;
    };
    std::unordered_map<std::uint32_t, Place> objects;
    std::vector<std::int64_t> trailers;  ///< where the dictionaries behind the word begin, the first ones
    std::uint32_t catalog = 0;           ///< the last object with "/Catalog" in it; 0 for none
    bool encrypted = false;              ///< "/Encrypt" is somewhere in the file
};

/// Reads the whole file once. A PdfError for a file beyond what is searched, or with more
/// objects than the parser takes.
FoundObjects SearchObjects(FileWindow& file);

}  // namespace VellumLib
