#pragma once

// What the fuzz targets of reference files share: bytes as a file in memory, and both
// reads of the front door, and its saves.

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>

#include <fcntl.h>
#include <unistd.h>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace fuzz {

/// A file in memory under a name with that extension, and the name of another beside
/// it to write to. Log lines go nowhere from now on.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& extension) {
        folder_ = "/dev/shm/mapanchor-fuzz-XXXXXX";
        if (!mkdtemp(folder_.data())) std::abort();
        path_ = folder_ + "/map." + extension;
        out_ = folder_ + "/out." + extension;
        Tellurion::BLogger::Instance()->SetSink([](Tellurion::ELogSeverity, const Tellurion::BString&) {});
    }
    ~MemoryFile() {
        unlink(path_.c_str());
        unlink(out_.c_str());
        rmdir(folder_.c_str());
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    void Fill(const std::uint8_t* data, std::size_t size) const {
        const int descriptor = open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (descriptor < 0 || write(descriptor, data, size) != static_cast<ssize_t>(size)) std::abort();
        close(descriptor);
    }
    Tellurion::BString Path() const { return Tellurion::BString(path_); }
    Tellurion::BString Out() const { return Tellurion::BString(out_); }

private:
    std::string folder_;
    std::string path_;
    std::string out_;
};

/// Decisions by the fuzzer's bytes. Behind their end every choice is the honest one, so
/// that no bytes at all make a page that reads well.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

    std::uint8_t Byte() {
        if (left_ == 0) return 0;
        --left_;
        return *data_++;
    }
    bool Odd() { return Byte() > 232; }
    std::size_t Below(std::size_t count) { return Byte() % count; }
    template <class T, std::size_t N>
    const T& OneOf(const T (&values)[N]) {
        return values[Below(N)];
    }
    std::size_t Count(std::size_t honest) {
        static constexpr std::size_t kOdd[] = {0, 1, 2, 3, 5, 7, 8, 9, 40, 1000};
        return Odd() ? OneOf(kOdd) : honest;
    }
    double Number(double honest) {
        static constexpr double kOdd[] = {0.0,   -0.0, 1.0,  -1.0,  0.5,   1e-300, 1e300, -1e300, 1e39,
                                          -1e39, 2e9,  -3e9, 180.0, 360.0, 90.0,   -90.0, 1e15,   HUGE_VAL};
        if (!Odd()) return honest + Byte() / 16.0;
        if (!Odd()) return OneOf(kOdd);
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i)
            bits = bits << 8 | Byte();
        double any = 0.0;
        std::memcpy(&any, &bits, sizeof any);
        return any;
    }
    std::string Text(std::string honest) {
        if (!Odd()) return honest;
        std::string text(Below(24), ' ');
        for (char& byte : text)
            byte = static_cast<char>(Byte());
        return Odd() ? text : honest + text;
    }

private:
    const std::uint8_t* data_;
    std::size_t left_;
};

constexpr long kWidth = 64;
constexpr long kHeight = 48;

template <class Operation>
bool Succeeds(Operation operation) {
    try {
        operation();
        return true;
    } catch (const Tellurion::BException&) {
        return false;
    }
}

inline void ReadByType(Tellurion::EReferenceType type, const Tellurion::BString& file, unsigned int flags,
                       Tellurion::EMathTransformType fit = Tellurion::EMathTransformType::Affine) {
    Tellurion::BGeoReference reference;
    Succeeds(
        [&] { MapAnchor::BMapAnchor::Read(type, file, reference, kWidth, kHeight, fit, flags, nullptr); });
}

inline bool ReadByName(const Tellurion::BString& file, Tellurion::BGeoReference& reference,
                       Tellurion::EMathTransformType fit = Tellurion::EMathTransformType::Affine) {
    Tellurion::BString used;
    return Succeeds(
        [&] { MapAnchor::BMapAnchor::Read(file, reference, used, kWidth, kHeight, fit, nullptr); });
}

/// Reads the file by name and by type. What was read by name can be asked for a position.
inline bool ReadOnAllRoads(Tellurion::EReferenceType type, const Tellurion::BString& file,
                           Tellurion::BGeoReference& reference) {
    ReadByType(type, file, 0);
    ReadByType(type, file, MapAnchor::BMapAnchor::kStrictTransform | MapAnchor::BMapAnchor::kStrictCoordSys);
    if (!ReadByName(file, reference)) return false;
    double x = 1.0;
    double y = 1.0;
    if (reference.HasMathTransform()) reference.MathTransform->ConvertSourceToTarget(x, y);
    return true;
}

/// Saves by name and by type; false when the save by name refused. A save may refuse, but
/// only as a failure of the library's family.
inline bool SaveOnAllRoads(Tellurion::EReferenceType type, const Tellurion::BString& file,
                           const Tellurion::BGeoReference& reference) {
    const Tellurion::BString image("image.tif");
    Succeeds([&] { MapAnchor::BMapAnchor::Save(type, file, reference, kWidth, kHeight, image, 0, nullptr); });
    return Succeeds([&] { MapAnchor::BMapAnchor::Save(file, reference, kWidth, kHeight, image, nullptr); });
}

}  // namespace fuzz
