#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string>

/// Small files of the chart and frame kinds, made field by field.
namespace MapAnchor {

inline std::string Number(std::uint64_t value, std::size_t size, bool big_endian) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> 8 * (big_endian ? size - 1 - i : i) & 0xFF);
    return bytes;
}

inline void Put(std::string& bytes, std::size_t at, const std::string& field) {
    if (bytes.size() < at + field.size()) bytes.resize(at + field.size(), '\0');
    bytes.replace(at, field.size(), field);
}

/// A CADRG frame whose sections follow one another; the places say where they start.
struct FrameFile {
    bool big_endian = true;
    bool bare = false;  ///< without NITF around it, where the tag is
    std::size_t tag = 20;
    /// NW, SW, NE, SE latitude and longitude, two resolutions, latitude and longitude interval.
    std::array<double, 12> coverage = {11.5, -100, 10.0, -100, 11.5, -98, 10.0, -98, 150, 150, 0.001, 0.002};
    std::string tag_text = "RPFHDR";
    std::uint64_t header_length = 48;
    std::uint64_t location_at = 0;  ///< as stated; 0: where it is
    std::uint64_t table_offset = 14;
    std::uint64_t records = 2;
    std::uint64_t record_length = 10;
    std::uint64_t coverage_id = 130;
    std::uint64_t coverage_at = 0;  ///< 0: behind the table

    std::string Bytes() const {
        const auto number = [this](std::uint64_t value, std::size_t size) {
            return Number(value, size, big_endian);
        };
        const std::size_t header = bare ? 0 : tag + 11, location = header + 48, table = location + 14;
        std::string bytes = "NITF02.00";
        if (!bare) Put(bytes, tag, tag_text + "00048");
        Put(bytes, header, std::string(1, big_endian ? '\0' : '\xFF') + number(header_length, 2));
        Put(bytes, header + 16, "MIL-C-89038    ");
        Put(bytes, header + 44, number(location_at == 0 ? location : location_at, 4));
        Put(bytes, location,
            number(14, 2) + number(table_offset, 4) + number(records, 2) + number(record_length, 2));
        Put(bytes, table, number(131, 2) + number(6, 4) + number(9999, 4));
        Put(bytes, table + 10,
            number(coverage_id, 2) + number(96, 4) + number(coverage_at == 0 ? table + 20 : coverage_at, 4));
        for (std::size_t i = 0; i < coverage.size(); ++i)
            Put(bytes, table + 20 + 8 * i, number(std::bit_cast<std::uint64_t>(coverage[i]), 8));
        return bytes;
    }
};

/// The values of an ADRG record as the file has them.
struct AdrgValues {
    std::string columns = "01296000";
    std::string rows = "00648000";
    std::string longitude = "-0123045.50";
    std::string latitude = "+480000.50";

    std::string Text() const { return columns + rows + longitude + latitude; }
    /// A record of a general information file.
    std::string Record(const std::string& image) const {
        return "GIN01\x1E" + std::string("ADRG") + image + std::string(118, '3') + Text() + "\x1E";
    }
    /// The first record of such a file, which also is what an overview file starts with.
    std::string Overview(const std::string& image) const {
        return "OVV01\x1E" + std::string("ADRG") + image + "\x1E" + "3" + Text() + "\x1E";
    }
};

/// The front of an ISO 8211 file that is recognised as ADRG by its first bytes.
inline std::string AdrgLeader(bool image = false) {
    const std::string end = "0420031";
    return "008182L   0600115   3403000" + end + "001" + end + (image ? "PAD" : "DSI") + end +
           (image ? "SCN" : "GEN") + end + "\x1E";
}

/// A DOQ header over the first lines of an image.
struct DoqFile {
    long line = 400;
    std::string zone = "    12";
    std::string datum = "  ";  ///< " 1" is NAD27
    std::string x = "   0.500000125000000D+06";
    std::string y = "   0.412345675000000D+07";
    std::string x_size = "         1.5";
    std::string y_size = "         2.5";

    std::string Bytes() const {
        std::string bytes(160, ' ');
        const std::string line_text = std::to_string(line);
        Put(bytes, 156 - line_text.size(), line_text);
        Put(bytes, 167, datum);
        Put(bytes, 198, zone);
        const auto length = static_cast<std::size_t>(line);
        Put(bytes, 2 * length + 336, x + y);
        Put(bytes, 3 * length + 59, x_size + y_size);
        return bytes;
    }
};

}  // namespace MapAnchor
