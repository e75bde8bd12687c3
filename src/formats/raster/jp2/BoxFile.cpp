#include "raster/jp2/BoxFile.h"

#include "common/files/ByteReader.h"

#include <algorithm>

namespace MapAnchor {
namespace {

constexpr int kMostBoxes = 256;
constexpr std::size_t kLongHeader = 16;

}  // namespace

bool BoxWalk::Next(Box& box) {
    if (++steps_ > kMostBoxes) return false;
    ByteReader header(file_.Read(next_, kLongHeader));
    std::uint64_t length = header.U32();
    box.type = header.Bytes(4);
    if (!header.Ok()) return false;
    if (length == 1) length = header.U64();
    const std::uint64_t rest = file_.Size() - next_;
    if (length == 0) length = rest;
    if (!header.Ok() || length < header.Position()) return false;
    box.offset = next_ + header.Position();
    // The last box of a file that was cut off ends with the file.
    length = std::min(length, rest);
    box.length = length - header.Position();
    next_ += length;
    return true;
}

std::string_view BoxWalk::Content(const Box& box, std::size_t limit) {
    return file_.Read(box.offset, static_cast<std::size_t>(std::min<std::uint64_t>(box.length, limit)));
}

}  // namespace MapAnchor
