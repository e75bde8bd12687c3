#pragma once

#include <Tellurion/RandomAccessFile.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace MapAnchor {

/// One box of a file: a type of four characters, and the position of its content.
struct Box {
    std::string type;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

/// Walks the boxes of a file at its top level, from the first on. Each step goes
/// forward, none beyond the end, and there is an end to the number of steps, so that
/// no file keeps a walk for long. What a box holds is read only when it is asked for.
class BoxWalk {
public:
    explicit BoxWalk(Tellurion::RandomAccessFile& file) : file_(file) {}

    /// The next box; false at the end, and where the file makes no sense.
    bool Next(Box& box);
    /// Up to `limit` bytes of a box's content. The view holds until the file is read again.
    std::string_view Content(const Box& box, std::size_t limit);

private:
    Tellurion::RandomAccessFile& file_;
    std::uint64_t next_ = 0;
    int steps_ = 0;
};

}  // namespace MapAnchor
