#pragma once

#include <Tellurion/BFile.h>

#include <cstddef>
#include <string>

namespace MapAnchor {

/// The front of a file, which grows as long as a parser needs more of it.
class FileHead {
public:
    /// `limit` is the most that will ever be read. The file is open and at its start.
    FileHead(Tellurion::BFile& file, std::size_t limit) : file_(file), limit_(limit) {}

    const std::string& Bytes() const { return bytes_; }
    /// Reads on, a few times as much as before; false at the file's end or the limit.
    bool Grow();

private:
    Tellurion::BFile& file_;
    std::size_t limit_;
    std::string bytes_;
};

}  // namespace MapAnchor
