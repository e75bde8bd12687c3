#include "raster/cadrg/CadrgFrame.h"

#include "common/files/ByteReader.h"
#include "lookups/CoordSysLookups.h"

#include <cmath>
#include <cstdint>
#include <string_view>

namespace MapAnchor {
namespace {

using Fault = CadrgFrame::Fault;

/// Where the header section starts: behind the tag and the five digits of its length.
/// 0 without a tag. A tag in the first four bytes is none.
std::uint64_t FindHeader(Tellurion::RandomAccessFile& file) {
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
    explicit Walk(Tellurion::RandomAccessFile& file) : file_(file) {}
    Fault ToCoverage(CadrgFrame& frame);

private:
    ByteReader At(std::uint64_t offset, std::size_t count);
    bool FindLocationSection(std::uint64_t& section);
    bool ReadLocationSection(std::uint64_t section, Table& table);
    Fault FindCoverage(const Table& table, std::uint64_t& offset);
    bool ReadCoverage(std::uint64_t offset, CadrgCoverage& coverage);

    Tellurion::RandomAccessFile& file_;
    ByteOrder order_ = ByteOrder::Big;
};

ByteReader Walk::At(std::uint64_t offset, std::size_t count) {
    return ByteReader(file_.Read(offset, count), order_);
}

bool Walk::FindLocationSection(std::uint64_t& section) {
    constexpr std::uint64_t kOffsetFromEnd = 4;
    const std::uint64_t header = FindHeader(file_);
    ByteReader start = At(header, 3);
    order_ = start.U8() == 0 ? ByteOrder::Big : ByteOrder::Little;
    start.SetOrder(order_);
    const std::uint64_t end = header + start.U16();
    if (!start.Ok() || end < kOffsetFromEnd) return false;
    ByteReader pointer = At(end - kOffsetFromEnd, 4);
    section = pointer.U32();
    return pointer.Ok();
}

bool Walk::ReadLocationSection(std::uint64_t section, Table& table) {
    ByteReader reader = At(section + 2, 8);
    table.start = section + reader.U32();
    table.records = reader.U16();
    table.record_length = reader.U16();
    return reader.Ok();
}

Fault Walk::FindCoverage(const Table& table, std::uint64_t& offset) {
    constexpr std::size_t kLongestTable = 2600;
    constexpr std::uint16_t kCoverageId = 130;
    if (table.start > file_.Size()) return Fault::ComponentTable;
    if (table.Length() > kLongestTable) return Fault::TableSize;
    const std::string_view bytes = file_.Read(table.start, table.Length());
    if (bytes.size() != table.Length()) return Fault::TableSize;
    for (std::size_t i = 0; i < table.records; ++i) {
        ByteReader record(bytes.substr(i * table.record_length), order_);
        const bool is_coverage = record.U16() == kCoverageId;
        record.Skip(4);  // its length
        offset = record.U32();
        if (!record.Ok()) break;
        if (is_coverage) return Fault::None;
    }
    return Fault::NoCoverage;
}

bool Walk::ReadCoverage(std::uint64_t offset, CadrgCoverage& c) {
    ByteReader reader = At(offset, 96);
    for (double* number : {&c.nw_latitude, &c.nw_longitude, &c.sw_latitude, &c.sw_longitude, &c.ne_latitude,
                           &c.ne_longitude, &c.se_latitude, &c.se_longitude})
        *number = reader.F64();
    reader.Skip(16);  // the two resolutions between corners and intervals
    c.latitude_interval = reader.F64();
    c.longitude_interval = reader.F64();
    return reader.Ok();
}

Fault Walk::ToCoverage(CadrgFrame& frame) {
    std::uint64_t section = 0;
    Table table;
    if (!FindLocationSection(section)) return Fault::EndOfHeader;
    if (!ReadLocationSection(section, table)) return Fault::LocationSection;
    const Fault fault = FindCoverage(table, frame.coverage_at);
    if (fault != Fault::None) return fault;
    return ReadCoverage(frame.coverage_at, frame.coverage) ? Fault::None : Fault::NoCoverage;
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

CadrgFrame ParseCadrgFrame(Tellurion::RandomAccessFile& file) {
    CadrgFrame frame;
    frame.fault = Walk(file).ToCoverage(frame);
    return frame;
}

}  // namespace MapAnchor
