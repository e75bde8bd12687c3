#include "raster/doqq/DoqHeader.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace MapAnchor {
namespace {

using Tellurion::ParseDouble;
using Tellurion::ParseLong;

/// The text of a field, which a NUL ends; empty outside the file.
std::string Field(Tellurion::RandomAccessFile& file, std::int64_t position, std::size_t length) {
    if (position < 0) return {};
    const std::string_view bytes = file.Read(static_cast<std::uint64_t>(position), length);
    return std::string(bytes.substr(0, bytes.find('\0')));
}

/// A number as Fortran prints it: the exponent's letter is at a fixed place.
double FortranNumber(std::string text) {
    constexpr std::size_t kExponent = 20;
    if (text.size() > kExponent) text[kExponent] = 'e';
    return ParseDouble(text);
}

std::string Digits(const std::string& text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c >= '0' && c <= '9'; });
    return digits;
}

}  // namespace

DoqHeader ParseDoqHeader(Tellurion::RandomAccessFile& file) {
    DoqHeader header;
    header.line_length = ParseLong(Field(file, 150, 6));
    header.datum = ParseLong(Field(file, DoqHeader::kDatumAt, 2));
    header.zone = Digits(Field(file, DoqHeader::kZoneAt, 6));
    const std::int64_t third_line = 2 * std::int64_t{header.line_length};
    const std::int64_t fourth_line = 3 * std::int64_t{header.line_length};
    header.position_at = third_line + 336;
    header.pixel_size_at = fourth_line + 59;
    header.x = FortranNumber(Field(file, header.position_at, 24));
    header.y = FortranNumber(Field(file, header.position_at + 24, 24));
    header.x_size = ParseDouble(Field(file, header.pixel_size_at, 12));
    header.y_size = ParseDouble(Field(file, header.pixel_size_at + 12, 12));
    return header;
}

}  // namespace MapAnchor
