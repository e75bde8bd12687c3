#include "raster/geotiff/GeoTiffHeader.h"

#include "common/files/ByteReader.h"
#include "raster/geotiff/HeaderTags.h"

#include <Tellurion/Ascii.h>
#include <Tellurion/RandomAccessFile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

namespace MapAnchor {

using namespace HeaderTags;
using Tellurion::RandomAccessFile;

namespace {

/// Size of a value of a TIFF type; 0 for a type that is not read here.
std::size_t SizeOfType(std::uint16_t type) {
    constexpr std::size_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 0, 0, 0, 8};
    return type < std::size(kSizes) ? kSizes[type] : 0;
}

constexpr std::uint16_t kShort = 3;
constexpr std::uint16_t kLong = 4;
constexpr std::uint16_t kDouble = 12;
constexpr std::uint16_t kLong8 = 16;

struct Entry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    std::uint64_t offset = 0;  ///< in the file, whether the entry holds the values or not
    std::uint64_t Length() const { return count * SizeOfType(type); }
};

/// Longer values are for GDAL.
constexpr std::uint64_t kMaxLength = 8192;
constexpr std::uint64_t kMaxEntries = 128;
constexpr int kMaxDirectories = 32;

constexpr std::string_view kStatistics = "<Item name=\"STATISTICS_";

/// Of an item of statistics as GDAL writes it, from its start; 0 for any other text, which may
/// be no XML.
std::size_t LengthOfStatistics(std::string_view text) {
    std::size_t at = kStatistics.size();
    const auto skip = [&](std::string_view wanted) {
        const bool found = text.substr(at).starts_with(wanted);
        at += found ? wanted.size() : 0;
        return found;
    };
    const auto skip_all_of = [&](std::string_view characters) {
        at = std::min(text.find_first_not_of(characters, at), text.size());
    };
    skip_all_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_");
    if (!skip("\" sample=\"")) return 0;
    skip_all_of("0123456789");
    if (!skip("\">")) return 0;
    skip_all_of("+-.0123456789eE");
    return skip("</Item>") ? at : 0;
}

/// True when a text in small letters may hold the reference of a character, such as "&#47;" or
/// "&quot;". Among numbers there are ampersands too.
bool MayHoldReference(std::string_view text) {
    constexpr std::size_t kLongest = 12;
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
        const std::string_view rest = text.substr(at + 1, kLongest);
        if (rest.find_first_of("#qalg") == 0 && rest.find(';') != std::string_view::npos) return true;
    }
    return false;
}

/// Reads one file; any doubt ends it.
class Parser {
public:
    explicit Parser(const Tellurion::BString& name) : file_(name) {}

    std::optional<GeoTiffHeader> Parse() {
        if (!file_.IsOpen() || !ParseHead() || !ParseFirst() || !ParseOthers()) return std::nullopt;
        if (!HasAllBlocks() || !HasPlainTransform() || MayNameFile()) return std::nullopt;
        return std::move(header_);
    }

private:
    std::uint64_t Number(ByteReader& reader, bool is_short) const {
        if (is_short) return big_ ? reader.U64() : reader.U16();
        return big_ ? reader.U64() : reader.U32();
    }

    bool ParseHead() {
        const std::string_view head = file_.Read(0, 16);
        if (head.size() < 8 || (head.substr(0, 2) != "II" && head.substr(0, 2) != "MM")) return false;
        order_ = head[0] == 'I' ? ByteOrder::Little : ByteOrder::Big;
        ByteReader reader(head, order_);
        reader.Skip(2);
        const std::uint16_t version = reader.U16();
        big_ = version == 43;
        if (version != 42 && !big_) return false;
        if (big_ && (reader.U16() != 8 || reader.U16() != 0)) return false;
        next_ = Number(reader, false);
        header_.key = std::string(head.substr(0, 4));
        return reader.Ok();
    }

    /// The entries of the directory at next_, which then is the one behind it.
    bool ReadEntries(std::vector<Entry>& entries) {
        const std::size_t count_size = big_ ? 8 : 2;
        const std::size_t entry_size = big_ ? 20 : 12;
        const std::size_t value_size = big_ ? 8 : 4;
        if (next_ < 8 || next_ > file_.Size()) return false;
        const std::string_view head = file_.Read(next_, count_size);
        ByteReader head_reader(head, order_);
        const std::uint64_t count = Number(head_reader, true);
        if (!head_reader.Ok() || count == 0 || count > kMaxEntries) return false;
        const std::uint64_t start = next_ + count_size;
        const std::size_t length = static_cast<std::size_t>(count) * entry_size + value_size;
        const std::string_view bytes = file_.Read(start, length);
        if (bytes.size() != length) return false;
        ByteReader reader(bytes, order_);
        for (std::uint64_t i = 0; i < count; ++i) {
            Entry entry;
            entry.tag = reader.U16();
            entry.type = reader.U16();
            entry.count = Number(reader, false);
            const std::uint64_t value = Number(reader, false);
            if (SizeOfType(entry.type) == 0 || entry.count == 0 || entry.count > file_.Size()) return false;
            const bool is_inside = entry.Length() <= value_size;
            entry.offset = is_inside ? start + (i + 1) * entry_size - value_size : value;
            if (entry.offset > file_.Size() || entry.Length() > file_.Size() - entry.offset) return false;
            entries.push_back(entry);
        }
        next_ = Number(reader, false);
        return reader.Ok();
    }

    std::string Bytes(const Entry& entry) {
        return std::string(file_.Read(entry.offset, static_cast<std::size_t>(entry.Length())));
    }

    /// The first of the values; whole numbers alone.
    bool ReadWhole(const Entry& entry, std::uint64_t& value) {
        const std::string bytes(file_.Read(entry.offset, SizeOfType(entry.type)));
        ByteReader reader(bytes, order_);
        if (entry.type == kShort)
            value = reader.U16();
        else if (entry.type == kLong)
            value = reader.U32();
        else if (entry.type == kLong8)
            value = reader.U64();
        else
            return false;
        return reader.Ok();
    }

    bool ParseFirst() {
        std::vector<Entry> entries;
        if (!ReadEntries(entries)) return false;
        // Out of order or twice, it depends on the reader what counts.
        for (std::size_t i = 1; i < entries.size(); ++i)
            if (entries[i].tag <= entries[i - 1].tag) return false;
        return std::all_of(entries.begin(), entries.end(), [this](const Entry& entry) { return Use(entry); });
    }

    bool Use(const Entry& entry) {
        const Role role = RoleOf(entry.tag);
        values_start_ = std::min(values_start_, entry.offset);
        if (entry.Length() <= kMaxLength) values_end_ = std::max(values_end_, entry.offset + entry.Length());
        if (role == Role::Ignored) return true;
        if (role == Role::Presence) Append(entry, {});
        if (role == Role::Presence) return true;
        if (role == Role::Blocks) return UseBlocks(entry);
        if (role == Role::Unknown || entry.Length() > kMaxLength) return false;
        if (role == Role::Transform) return UseTransform(entry);
        if (role == Role::Metadata) return UseMetadata(entry);
        return UseNumber(entry) && (role == Role::Size || UseKey(entry));
    }

    bool UseBlocks(const Entry& entry) {
        if (entry.type != kShort && entry.type != kLong && entry.type != kLong8) return false;
        const bool is_offsets = entry.tag == kStripOffsets || entry.tag == kTileOffsets;
        std::uint64_t& count = is_offsets ? offsets_ : byte_counts_;
        if (count != 0) return false;
        count = entry.count;
        return true;
    }

    bool UseNumber(const Entry& entry) {
        std::uint64_t* const number = NumberOf(entry.tag);
        return !number || (entry.count == 1 && ReadWhole(entry, *number));
    }

    std::uint64_t* NumberOf(std::uint16_t tag) {
        switch (tag) {
            case kImageWidth:
                return &width_;
            case kImageLength:
                return &height_;
            case kNewSubfileType:
                return &subfile_type_;
            case kSamplesPerPixel:
                return &samples_;
            case kRowsPerStrip:
                return &rows_;
            case kPlanarConfiguration:
                return &planes_;
            case kTileWidth:
                return &tile_width_;
            case kTileLength:
                return &tile_height_;
            default:
                return nullptr;
        }
    }

    void Append(const Entry& entry, std::string_view bytes) {
        for (const std::uint64_t number : {std::uint64_t{entry.tag}, std::uint64_t{entry.type}, entry.count,
                                           static_cast<std::uint64_t>(bytes.size())})
            header_.key += std::to_string(number) + ' ';
        header_.key += bytes;
    }

    bool UseKey(const Entry& entry) {
        // How many rows a strip has differs with the raster's size.
        if (entry.tag == kRowsPerStrip) return true;
        const std::string bytes = Bytes(entry);
        Append(entry, bytes);
        return entry.tag != kGeoKeyDirectory || UseDirectory(entry, bytes);
    }

    /// Entries of four shorts follow a header of four.
    bool UseDirectory(const Entry& entry, const std::string& bytes) {
        constexpr std::uint16_t kRasterType = 1025;
        constexpr std::uint16_t kPixelIsPoint = 2;
        if (entry.type != kShort || entry.count < 4) return false;
        ByteReader reader(bytes, order_);
        reader.Skip(6);
        const std::uint64_t count = reader.U16();
        if (entry.count < 4 * (count + 1)) return false;
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint16_t key = reader.U16();
            const std::uint16_t place = reader.U16();
            const std::uint16_t values = reader.U16();
            const std::uint16_t value = reader.U16();
            if (key != kRasterType) continue;
            if (place != 0 || values != 1) return false;
            header_.is_point = value == kPixelIsPoint;
        }
        return reader.Ok();
    }

    bool UseTransform(const Entry& entry) {
        std::vector<double>& numbers = entry.tag == kModelPixelScale ? header_.scale
                                       : entry.tag == kModelTiepoint ? header_.tie_point
                                                                     : header_.matrix;
        const std::uint64_t wanted = entry.tag == kModelPixelScale ? 3 : entry.tag == kModelTiepoint ? 6 : 16;
        if (entry.type != kDouble || entry.count != wanted) return false;
        const std::string bytes = Bytes(entry);
        ByteReader reader(bytes, order_);
        numbers.resize(wanted);
        std::generate(numbers.begin(), numbers.end(), [&reader] { return reader.F64(); });
        return reader.Ok() && std::all_of(numbers.begin(), numbers.end(),
                                          [](double number) { return std::isfinite(number); });
    }

    /// Statistics differ from raster to raster, and place none.
    bool UseMetadata(const Entry& entry) {
        std::string text = Bytes(entry);
        for (std::size_t at = text.find(kStatistics); at != std::string::npos;
             at = text.find(kStatistics, at)) {
            const std::size_t length = LengthOfStatistics(std::string_view(text).substr(at));
            if (length == 0) return false;
            text.erase(at, length);
        }
        Entry kept = entry;
        kept.count = text.size();
        Append(kept, text);
        return true;
    }

    /// Overviews and masks have no place of their own; other images are unusual.
    bool ParseOthers() {
        for (int left = kMaxDirectories; next_ != 0; --left) {
            std::vector<Entry> entries;
            if (left == 0 || !ReadEntries(entries)) return false;
            const auto type = std::find_if(entries.begin(), entries.end(),
                                           [](const Entry& entry) { return entry.tag == kNewSubfileType; });
            constexpr std::uint64_t kReducedOrMask = 1 | 4;
            std::uint64_t value = 0;
            if (type == entries.end() || !ReadWhole(*type, value) || (value & kReducedOrMask) == 0)
                return false;
        }
        return true;
    }

    /// A raster whose header names a file by a path is refused elsewhere, see FileNamedIn(). Here
    /// any word by which one could be named, or the reference of a character, is a doubt.
    bool MayNameFile() {
        constexpr std::uint64_t kMaxSpan = std::uint64_t{64} << 10;
        if (values_end_ < values_start_ || values_end_ - values_start_ > kMaxSpan) return true;
        const auto length = static_cast<std::size_t>(values_end_ - values_start_);
        const std::string text = Tellurion::LowerAscii(file_.Read(values_start_, length));
        constexpr std::string_view kWords[] = {"grids", "init", "file", "model", "catalog", "parameters"};
        return MayHoldReference(text) ||
               std::any_of(std::begin(kWords), std::end(kWords),
                           [&text](std::string_view word) { return text.find(word) != std::string::npos; });
    }

    bool HasAllBlocks() {
        constexpr std::uint64_t kMaxSize = std::numeric_limits<std::int32_t>::max();
        const auto parts = [](std::uint64_t whole, std::uint64_t part) { return (whole + part - 1) / part; };
        if (width_ == 0 || height_ == 0 || width_ > kMaxSize || height_ > kMaxSize) return false;
        if (subfile_type_ != 0 || samples_ == 0 || samples_ > 65535) return false;
        const bool tiled = tile_width_ != 0 || tile_height_ != 0;
        if (tiled ? tile_width_ == 0 || tile_height_ == 0 || tile_width_ > kMaxSize || tile_height_ > kMaxSize
                  : rows_ == 0)
            return false;
        // What GDAL would find too large to open.
        constexpr std::uint64_t kMaxBlock = kMaxSize / 16;
        const std::uint64_t block_width = tiled ? tile_width_ : width_;
        const std::uint64_t block_height = tiled ? tile_height_ : std::min(rows_, height_);
        if (block_width * block_height > kMaxBlock / samples_) return false;
        std::uint64_t blocks = tiled ? parts(width_, tile_width_) * parts(height_, tile_height_)
                                     : parts(height_, std::min(rows_, height_));
        constexpr std::uint64_t kSeparate = 2;
        if (planes_ == kSeparate) blocks *= samples_;
        header_.width = static_cast<long>(width_);
        header_.height = static_cast<long>(height_);
        header_.key += tiled ? 't' : 's';
        return offsets_ == blocks && byte_counts_ == blocks;
    }

    /// One scale with one point, a matrix, or nothing.
    bool HasPlainTransform() {
        const bool by_scale = !header_.scale.empty();
        if (by_scale != !header_.tie_point.empty() || (by_scale && !header_.matrix.empty())) return false;
        if (by_scale && (header_.scale[0] == 0.0 || header_.scale[1] <= 0.0)) return false;
        header_.shape = by_scale ? "scale" : header_.matrix.empty() ? "none" : "matrix";
        header_.shape += header_.is_point ? ", point" : ", area";
        header_.key += header_.shape;
        return true;
    }

    RandomAccessFile file_;
    ByteOrder order_ = ByteOrder::Little;
    bool big_ = false;
    std::uint64_t next_ = 0;
    std::uint64_t values_start_ = std::numeric_limits<std::uint64_t>::max(), values_end_ = 0;
    std::uint64_t width_ = 0, height_ = 0, subfile_type_ = 0, samples_ = 1, planes_ = 1;
    std::uint64_t rows_ = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t tile_width_ = 0, tile_height_ = 0;
    std::uint64_t offsets_ = 0, byte_counts_ = 0;
    GeoTiffHeader header_;
};

}  // namespace

std::optional<GeoTiffHeader> GeoTiffHeader::Read(const Tellurion::BString& file) {
    return Parser(file).Parse();
}

std::optional<AffineTerms> GeoTiffHeader::Terms() const {
    AffineTerms t{};
    if (!scale.empty())
        t = {scale[0], 0.0,       tie_point[3] - tie_point[0] * scale[0],
             0.0,      -scale[1], tie_point[4] - tie_point[1] * -scale[1]};
    else if (!matrix.empty())
        t = {matrix[0], matrix[1], matrix[3], matrix[4], matrix[5], matrix[7]};
    else
        return std::nullopt;
    if (is_point) {
        t.c -= t.a * 0.5 + t.b * 0.5;
        t.f -= t.d * 0.5 + t.e * 0.5;
    }
    return t;
}

}  // namespace MapAnchor
