#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// Files of the formats that are read by their headers, as bytes.
namespace HeaderFiles {

/// Appends numbers and texts.
class Bytes {
public:
    std::string text;

    template <class Number>
    Bytes& Big(Number value) {
        for (int shift = 8 * (static_cast<int>(sizeof(Number)) - 1); shift >= 0; shift -= 8)
            text += static_cast<char>((static_cast<std::uint64_t>(value) >> shift) & 0xFF);
        return *this;
    }
    template <class Number>
    Bytes& Little(Number value) {
        for (std::size_t byte = 0; byte < sizeof(Number); ++byte)
            text += static_cast<char>((static_cast<std::uint64_t>(value) >> (8 * byte)) & 0xFF);
        return *this;
    }
    Bytes& U8(int value) { return Big(static_cast<std::uint8_t>(value)); }
    Bytes& U16(int value) { return Big(static_cast<std::uint16_t>(value)); }
    Bytes& U32(std::size_t value) { return Big(static_cast<std::uint32_t>(value)); }
    Bytes& BigDouble(double value) { return Big(std::bit_cast<std::uint64_t>(value)); }
    Bytes& LittleDouble(double value) { return Little(std::bit_cast<std::uint64_t>(value)); }
    Bytes& Text(const std::string& value) {
        text += value;
        return *this;
    }
    /// A field of that size, with rubbish behind the NUL.
    Bytes& Field(const std::string& value, std::size_t size) {
        std::string field = value;
        if (field.size() < size) field += '\0';
        field.resize(size, '#');
        return Text(field);
    }
};

struct Ecw {
    double step_x = 10.0;
    double step_y = -10.0;
    double x = 500000.0;
    double y = 4100000.0;
    std::string datum = "RAW";
    std::string projection = "RAW";
    int units = 1;
    std::size_t columns = 200;
    int bands = 3;
};

inline std::string Ecw2(const Ecw& e) {
    Bytes b;
    b.Text("e").U8(2).U8(1).U8(2).U8(1).U8(4).U32(e.columns).U32(100).U16(e.bands).U16(1);
    b.U16(64).U16(64).U16(20).U8(e.units);
    b.LittleDouble(e.step_x).LittleDouble(e.step_y).LittleDouble(e.x).LittleDouble(e.y);
    return b.Field(e.datum, 16).Field(e.projection, 16).text;
}

/// GeoTIFF tags with their values as bytes, little endian.
struct GeoTags {
    std::vector<double> scale;
    std::vector<double> tie;
    std::vector<double> matrix;
    std::vector<int> keys;  ///< key, location, count, value ...
    std::string ascii;

    struct Tag {
        int number;
        int type;
        std::size_t count;
        std::string data;
    };
    std::vector<Tag> List() const {
        std::vector<Tag> list;
        const auto add = [&](int number, const std::vector<double>& values) {
            Bytes b;
            for (const double value : values)
                b.LittleDouble(value);
            if (!values.empty()) list.push_back({number, 12, values.size(), b.text});
        };
        add(0x830E, scale);
        add(0x8482, tie);
        add(0x85D8, matrix);
        Bytes b;
        for (const int value : {1, 1, 0, static_cast<int>(keys.size() / 4)})
            b.Little(static_cast<std::uint16_t>(value));
        for (const int value : keys)
            b.Little(static_cast<std::uint16_t>(value));
        list.push_back({0x87AF, 3, b.text.size() / 2, b.text});
        if (!ascii.empty()) list.push_back({0x87B1, 2, ascii.size(), ascii});
        return list;
    }
};

/// 10 units a pixel from (500000, 4100000), with those keys besides.
inline GeoTags Placed(std::vector<int> keys, const std::string& ascii = "") {
    return {{10, 10, 0}, {0, 0, 0, 500000, 4100000, 0}, {}, std::move(keys), ascii};
}

inline std::string Tiff(const GeoTags& tags) {
    const auto list = tags.List();
    Bytes head;
    Bytes data;
    const std::size_t data_start = 8 + 2 + 12 * list.size() + 4;
    head.Text("II").Little(std::uint16_t{42}).Little(std::uint32_t{8});
    head.Little(static_cast<std::uint16_t>(list.size()));
    for (const auto& tag : list) {
        head.Little(static_cast<std::uint16_t>(tag.number)).Little(static_cast<std::uint16_t>(tag.type));
        head.Little(static_cast<std::uint32_t>(tag.count));
        head.Little(static_cast<std::uint32_t>(data_start + data.text.size()));
        data.Text(tag.data);
    }
    return head.Little(std::uint32_t{0}).text + data.text;
}

inline std::string Box(const std::string& type, const std::string& content) {
    return Bytes().U32(content.size() + 8).Text(type).Text(content).text;
}

inline std::string Ecw3(const GeoTags& tags) {
    Bytes content;
    for (const auto& tag : tags.List())
        content.U16(tag.number).U32(tag.data.size()).Text(tag.data);
    const std::string gtif = Bytes().U32(content.text.size() + 5).U8(0).text + content.text;
    return Box("ecw ", "\x0A\x0D\x87\x0A" + Bytes().U32(3).text) +
           Box("ftyp", "ecw " + Bytes().U32(3).text + "ecw ECW3") + Box("ecwc", "stream") + Box("gtif", gtif);
}

inline std::string Jp2Start() {
    return Box("jP  ", "\x0D\x0A\x87\x0A") + Box("ftyp", "jp2 " + Bytes().U32(0).text + "jp2 ");
}
inline std::string GeoBox(const GeoTags& tags) {
    return Box("uuid", "\xB1\x4B\xF8\xBD\x08\x3D\x4B\x43\xA5\xAE\x8C\xD7\xD5\xA6\xCE\x03" + Tiff(tags));
}
inline std::string Jp2(const GeoTags& tags) {
    return Jp2Start() + GeoBox(tags) + Box("jp2c", "\xFF\x4F\xFF\x51");
}

inline std::string SidRecord(const std::string& name, int type, std::size_t count, const std::string& data) {
    Bytes b;
    b.U32(name.size() + 16).Text(name).U8(0).U32(static_cast<std::size_t>(type)).U32(count).U32(1).U32(count);
    return b.text + data;
}
inline std::string SidNumber(const std::string& name, double value) {
    return SidRecord(name, 7, 1, Bytes().BigDouble(value).text);
}
inline std::string SidShort(const std::string& name, int value) {
    return SidRecord(name, 2, 1, Bytes().U16(value).text);
}
inline std::string SidText(const std::string& name, const std::string& value) {
    return SidRecord(name, 5, 1, value + '\0');
}
inline std::string SidPlace(double x, double y, double step_x, double step_y) {
    return SidRecord("IMAGE::XY_ORIGIN", 7, 2, Bytes().BigDouble(x).BigDouble(y).text) +
           SidNumber("IMAGE::X_RESOLUTION", step_x) + SidNumber("IMAGE::Y_RESOLUTION", step_y);
}
inline std::string SidRecords(const std::string& records) {
    return SidShort("IMAGE::SOM", 1) + records + SidShort("IMAGE::EOM", 1);
}

constexpr const char* kSidProjected = "GEOTIFF_NUM::3072::ProjectedCSTypeGeoKey";
constexpr const char* kSidGeographic = "GEOTIFF_NUM::2048::GeographicTypeGeoKey";

/// Generation 2, its records behind some bytes of image.
inline std::string Sid2(const std::string& records) {
    Bytes b;
    b.Text("msid").U8(1).U8(0).U8(1).U32(1).U32(1).U32(200).U32(100);
    for (int i = 0; i < 4; ++i)
        b.U32(64);
    b.U8(0xFF).U8(0xD0).U32(64).Field("image", 64 - b.text.size());
    b.U8(0xFF).U8(0xD1).U8(0).U8(1).U16(0).Text(SidRecords(records));
    return b.U8(0xFF).U8(0xD2).U8(0xFF).U8(0xA1).text;
}

/// Generation 3; a chunk with the position when there are six doubles.
inline std::string Sid3(const std::string& records, const std::vector<double>& place = {},
                        int generation = 3) {
    Bytes b;
    b.Text("msid").U8(generation).U8(0).U8(0x1A).U8(0x71).Field("chunk", 40);
    b.U8(2).U8(0x43).U8(1).Big(std::uint64_t{1}).U32(1).U8(0).U8(1).U16(0).Text(SidRecords(records));
    b.Text("\xFF\xFF\xFF\xFF");
    if (place.empty()) return b.text;
    b.U8(2).U8(0x43).U8(3).Big(std::uint64_t{53}).U32(49).U8(1);
    for (const double value : place)
        b.BigDouble(value);
    return b.text;
}

}  // namespace HeaderFiles
