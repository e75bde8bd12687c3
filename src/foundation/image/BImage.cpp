#include <Tellurion/BFile.h>
#include <Tellurion/BImage.h>

#include "text/Ascii.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Tellurion {
namespace {

/// The first bytes of a file, at most `count`.
std::string FirstBytes(const BString& path, std::size_t count) {
    BFile file(path);
    if (!file.Open(EFileMode::Read, EFileMode::Binary)) return {};
    std::string bytes(count, '\0');
    bytes.resize(file.Read(bytes.data(), count));
    return bytes;
}

/// The leader of an ISO 8211 file: 24 characters that say how its directory of
/// fields is laid out.
struct Iso8211Leader {
    static constexpr std::size_t kLength = 24;
    static constexpr char kFieldTerminator = '\x1E';

    explicit Iso8211Leader(std::string_view bytes) {
        if (bytes.size() < kLength) return;
        const std::string_view numbers = bytes.substr(0, 5);
        valid = std::all_of(numbers.begin(), numbers.end(), IsDigit) && bytes[6] == 'L' &&
                IsDigit(bytes[20]) && IsDigit(bytes[21]) && IsDigit(bytes[23]) && bytes[23] != '0';
        if (!valid) return;
        tag_length = static_cast<std::size_t>(bytes[23] - '0');
        entry_length = tag_length + static_cast<std::size_t>(bytes[20] - '0' + bytes[21] - '0');
    }

    bool valid = false;
    std::size_t tag_length = 0;
    std::size_t entry_length = 0;
};

/// True when the directory behind the leader has a field of that tag.
bool HasField(std::string_view bytes, const Iso8211Leader& leader, std::string_view tag) {
    std::size_t at = Iso8211Leader::kLength;
    while (at + leader.entry_length <= bytes.size() && bytes[at] != Iso8211Leader::kFieldTerminator) {
        if (bytes.substr(at, leader.tag_length) == tag) return true;
        at += leader.entry_length;
    }
    return false;
}

/// An RPF file without NITF around it: the byte order, the length of its header
/// section in that order, and in its place the standard that it follows.
bool IsBareRpf(std::string_view bytes) {
    constexpr std::size_t kHeaderLength = 48;
    constexpr std::size_t kStandard = 16;
    if (bytes.size() < kHeaderLength) return false;
    const bool big_endian = bytes[0] == '\0';
    if (!big_endian && bytes[0] != '\xFF') return false;
    return bytes[big_endian ? 1 : 2] == '\0' && bytes[big_endian ? 2 : 1] == char{kHeaderLength} &&
           bytes.substr(kStandard).starts_with("MIL-");
}

}  // namespace

bool BImage::CheckIfADRGReader(const BString& path) {
    // A directory of ADRG has a dozen entries of ten characters.
    const std::string bytes = FirstBytes(path, 512);
    const Iso8211Leader leader(bytes);
    if (!leader.valid) return false;
    const auto has = [&](std::string_view tag) { return HasField(bytes, leader, tag); };
    const bool describes = has("DSI") && (has("GEN") || has("OVI"));
    const bool holds_pixels = has("PAD") && has("SCN");
    return describes || holds_pixels;
}

bool BImage::CheckIfCADRGReader(const BString& path) {
    constexpr std::string_view kTag = "RPFHDR";
    const std::string bytes = FirstBytes(path, 512);
    const auto same = [](char a, char b) { return UpperAscii(a) == b; };
    return IsBareRpf(bytes) ||
           std::search(bytes.begin(), bytes.end(), kTag.begin(), kTag.end(), same) != bytes.end();
}

}  // namespace Tellurion
