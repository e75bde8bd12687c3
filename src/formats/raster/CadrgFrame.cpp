#include "raster/CadrgFrame.h"

#include "sidecar/CoordSysLookups.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace MapAnchor {
namespace {

using Fault = CadrgFrame::Fault;

/// The unsigned number in `bytes`, which are at most eight.
std::uint64_t Unsigned(std::string_view bytes, bool big_endian) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[big_endian ? i : bytes.size() - 1 - i]);
        value = value << 8 | byte;
    }
    return value;
}

/// Where the header section starts: behind the tag and the five digits of its length.
/// 0 without a tag. A tag in the first four bytes is none.
std::uint64_t FindHeader(RandomAccessFile& file) {
    constexpr std::size_t kSearched = 512;
    constexpr std::size_t kFirstPlace = 4;
    constexpr std::string_view kTag = "RPFHDR";
    constexpr std::size_t kTagAndLength = 11;
    const std::string_view head = file.Read(0, kSearched);
    for (std::size_t at = kFirstPlace; at + kTag.size() <= head.size(); ++at)
        if (CompareNoCase(head.data() + at, kTag.data(), kTag.size()) == 0) return at + kTagAndLength;
    return 0;
}

/// The component location table.
struct Table {
    std::uint64_t start = 0;
    std::size_t records = 0;
    std::size_t record_length = 0;

    std::size_t Length() const { return records * record_length; }
};

class Walk {
public:
    explicit Walk(RandomAccessFile& file) : file_(file) {}
    Fault ToCoverage(CadrgCoverage& coverage);

private:
    bool Get(std::uint64_t offset, std::size_t size, std::uint64_t& value);
    bool FindLocationSection(std::uint64_t& section);
    bool ReadLocationSection(std::uint64_t section, Table& table);
    Fault FindCoverage(const Table& table, std::uint64_t& offset);
    bool ReadCoverage(std::uint64_t offset, CadrgCoverage& coverage);

    RandomAccessFile& file_;
    bool big_endian_ = false;
};

bool Walk::Get(std::uint64_t offset, std::size_t size, std::uint64_t& value) {
    const std::string_view bytes = file_.Read(offset, size);
    value = Unsigned(bytes, big_endian_);
    return bytes.size() == size;
}

bool Walk::FindLocationSection(std::uint64_t& section) {
    constexpr std::uint64_t kOffsetFromEnd = 4;
    const std::uint64_t header = FindHeader(file_);
    std::uint64_t flag = 0;
    std::uint64_t length = 0;
    if (!Get(header, 1, flag)) return false;
    big_endian_ = flag == 0;
    return Get(header + 1, 2, length) && header + length >= kOffsetFromEnd &&
           Get(header + length - kOffsetFromEnd, 4, section);
}

bool Walk::ReadLocationSection(std::uint64_t section, Table& table) {
    std::uint64_t offset = 0;
    std::uint64_t records = 0;
    std::uint64_t record_length = 0;
    const bool read =
        Get(section + 2, 4, offset) && Get(section + 6, 2, records) && Get(section + 8, 2, record_length);
    table = {section + offset, static_cast<std::size_t>(records), static_cast<std::size_t>(record_length)};
    return read;
}

Fault Walk::FindCoverage(const Table& table, std::uint64_t& offset) {
    constexpr std::size_t kLongestTable = 2600;
    constexpr std::uint64_t kCoverageId = 130;
    constexpr std::size_t kFields = 10;  // of a record: two bytes of id, four of length, four of location
    if (table.start > file_.Size()) return Fault::ComponentTable;
    if (table.Length() > kLongestTable) return Fault::TableSize;
    const std::string_view bytes = file_.Read(table.start, table.Length());
    if (bytes.size() != table.Length()) return Fault::TableSize;
    for (std::size_t i = 0; i < table.records; ++i) {
        const std::size_t at = i * table.record_length;
        if (at + kFields > bytes.size()) break;
        if (Unsigned(bytes.substr(at, 2), big_endian_) != kCoverageId) continue;
        offset = Unsigned(bytes.substr(at + 6, 4), big_endian_);
        return Fault::None;
    }
    return Fault::NoCoverage;
}

bool Walk::ReadCoverage(std::uint64_t offset, CadrgCoverage& c) {
    constexpr std::size_t kLength = 96;
    const std::string_view bytes = file_.Read(offset, kLength);
    if (bytes.size() != kLength) return false;
    const auto number = [&](std::size_t at) {
        return std::bit_cast<double>(Unsigned(bytes.substr(at, 8), big_endian_));
    };
    // The two resolutions between corners and intervals are not needed.
    c = {number(0),  number(8),  number(16), number(24), number(32),
         number(40), number(48), number(56), number(80), number(88)};
    return true;
}

Fault Walk::ToCoverage(CadrgCoverage& coverage) {
    std::uint64_t section = 0;
    std::uint64_t offset = 0;
    Table table;
    if (!FindLocationSection(section)) return Fault::EndOfHeader;
    if (!ReadLocationSection(section, table)) return Fault::LocationSection;
    const Fault fault = FindCoverage(table, offset);
    if (fault != Fault::None) return fault;
    return ReadCoverage(offset, coverage) ? Fault::None : Fault::NoCoverage;
}

}  // namespace

bool CadrgCoverage::IsOnGlobe() const {
    const auto within = [](double degrees, double most) { return std::fabs(degrees) <= most; };
    return within(nw_latitude, 90.0) && within(se_latitude, 90.0) && within(nw_longitude, 180.0) &&
           within(se_longitude, 180.0);
}

bool CadrgCoverage::HasExtent() const {
    return nw_latitude != sw_latitude && ne_latitude != se_latitude && nw_longitude != ne_longitude &&
           sw_longitude != se_longitude;
}

AffineTerms CadrgCoverage::ToAffine() const {
    constexpr double kRows = 1536.0;
    constexpr double kLevel = 1e-7;
    const double x = longitude_interval * 0.5 + nw_longitude;
    // Up from a level south edge, since intervals and corners need not agree to the last digit.
    const bool level = std::fabs(sw_latitude - se_latitude) < kLevel;
    const double y = level ? (sw_latitude - latitude_interval * 0.5) + latitude_interval * kRows
                           : nw_latitude - latitude_interval * 0.5;
    return {longitude_interval, 0.0, x, 0.0, -latitude_interval, y};
}

CadrgFrame ParseCadrgFrame(RandomAccessFile& file) {
    CadrgFrame frame;
    frame.fault = Walk(file).ToCoverage(frame.coverage);
    return frame;
}

}  // namespace MapAnchor
