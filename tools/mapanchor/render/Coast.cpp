#include "render/Coast.h"

#include "render/CoastData.h"

#include <cstdint>

namespace Tool {

namespace {

constexpr double kPerDegree = 100.0;

class Reader {
public:
    std::uint64_t ReadCount() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; at_ < kCoastSize; shift += 7) {
            const unsigned char byte = kCoastData[at_++];
            value |= static_cast<std::uint64_t>(byte & 127) << shift;
            if (byte < 128) break;
        }
        return value;
    }
    long ReadStep() {
        const std::uint64_t coded = ReadCount();
        const long half = static_cast<long>(coded >> 1);
        return coded & 1 ? -half - 1 : half;
    }

private:
    std::size_t at_ = 0;
};

std::vector<CoastRing> ReadRings(Reader& reader) {
    std::vector<CoastRing> rings(reader.ReadCount());
    long x = 0;
    long y = 0;
    for (CoastRing& ring : rings) {
        ring.resize(reader.ReadCount());
        for (Position& position : ring) {
            x += reader.ReadStep();
            y += reader.ReadStep();
            position = {static_cast<double>(x) / kPerDegree, static_cast<double>(y) / kPerDegree};
        }
    }
    return rings;
}

}  // namespace

std::vector<CoastRing> ReadCoast(CoastScale scale) {
    Reader reader;
    std::vector<CoastRing> rings = ReadRings(reader);
    return scale == CoastScale::Of110Million ? rings : ReadRings(reader);
}

}  // namespace Tool
