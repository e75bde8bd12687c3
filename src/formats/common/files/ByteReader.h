#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace MapAnchor {

enum class ByteOrder { Big, Little };

/// A cursor over bytes in memory. Every read goes through one checked advance: a read
/// beyond the end gives zeros or nothing, and from then on the reader has failed and
/// gives nothing more, so that a parser may read a whole record and ask Ok() once.
/// The bytes are not copied; views that were handed out live as long as they do.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes, ByteOrder order = ByteOrder::Big)
        : bytes_(bytes), order_(order) {}

    bool Ok() const { return ok_; }
    std::size_t Position() const { return position_; }
    std::size_t Remaining() const { return bytes_.size() - position_; }
    bool AtEnd() const { return Remaining() == 0; }

    /// How numbers are stored from here on.
    void SetOrder(ByteOrder order) { order_ = order; }

    std::uint8_t U8() { return Unsigned<std::uint8_t>(); }
    std::uint16_t U16() { return Unsigned<std::uint16_t>(); }
    std::uint32_t U32() { return Unsigned<std::uint32_t>(); }
    std::uint64_t U64() { return Unsigned<std::uint64_t>(); }
    std::int16_t S16() { return static_cast<std::int16_t>(U16()); }
    std::int32_t S32() { return static_cast<std::int32_t>(U32()); }
    float F32() { return std::bit_cast<float>(U32()); }
    double F64() { return std::bit_cast<double>(U64()); }

    /// The next `count` bytes; empty when there are fewer.
    std::string_view Bytes(std::uint64_t count) {
        const char* const from = Advance(count);
        return from ? std::string_view(from, static_cast<std::size_t>(count)) : std::string_view();
    }
    /// A text field of `count` bytes that ends at its first NUL.
    std::string_view Text(std::uint64_t count) {
        const std::string_view field = Bytes(count);
        return field.substr(0, field.find('\0'));
    }
    /// A text that a NUL must end.
    std::string_view TextToNul() {
        const std::size_t length = bytes_.substr(position_).find('\0');
        if (length == std::string_view::npos) return Bytes(std::uint64_t{Remaining()} + 1);
        return Bytes(length + 1).substr(0, length);
    }

    bool Skip(std::uint64_t count) { return Advance(count) != nullptr; }
    /// Goes to an offset from the start of the bytes; their end is one, too.
    bool Seek(std::uint64_t offset) {
        if (ok_ && offset <= bytes_.size())
            position_ = static_cast<std::size_t>(offset);
        else
            ok_ = false;
        return ok_;
    }

private:
    /// Where `count` bytes begin, which the cursor has passed then; null without them.
    const char* Advance(std::uint64_t count) {
        if (!ok_ || count > Remaining()) {
            ok_ = false;
            return nullptr;
        }
        const char* const from = bytes_.data() + position_;
        position_ += static_cast<std::size_t>(count);
        return from;
    }

    template <class Number>
    Number Unsigned() {
        unsigned char raw[sizeof(Number)] = {};
        if (const char* const from = Advance(sizeof(Number))) std::memcpy(raw, from, sizeof(Number));
        Number value = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i) {
            const std::size_t place = order_ == ByteOrder::Little ? i : sizeof(Number) - 1 - i;
            value = static_cast<Number>(value | (Number{raw[i]} << (8 * place)));
        }
        return value;
    }

    std::string_view bytes_;
    std::size_t position_ = 0;
    ByteOrder order_;
    bool ok_ = true;
};

}  // namespace MapAnchor
