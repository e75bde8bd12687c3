// World files: any bytes through both roads of the front door, and what was read
// out again through the writer.

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>
#include <Tellurion/BLogger.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cstdint>
#include <cstdlib>
#include <string>

using MapAnchor::BMapAnchor;
using namespace Tellurion;

namespace {

/// A file in memory under a name with a world file's extension.
class MemoryFile {
public:
    MemoryFile() {
        folder_ = "/dev/shm/mapanchor-fuzz-XXXXXX";
        if (!mkdtemp(folder_.data())) std::abort();
        path_ = folder_ + "/map.tfw";
        out_ = folder_ + "/out.tfw";
    }
    ~MemoryFile() {
        unlink(path_.c_str());
        unlink(out_.c_str());
        rmdir(folder_.c_str());
    }
    void Fill(const std::uint8_t* data, std::size_t size) const {
        const int descriptor = open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (descriptor < 0 || write(descriptor, data, size) != static_cast<ssize_t>(size)) std::abort();
        close(descriptor);
    }
    const std::string& Path() const { return path_; }
    const std::string& Out() const { return out_; }

private:
    std::string folder_;
    std::string path_;
    std::string out_;
};

bool ReadByName(const BString& file, BGeoReference& reference) {
    BString used;
    try {
        BMapAnchor::Read(file, reference, used, 0, 0, EMathTransformType::Affine, nullptr);
        return true;
    } catch (const BException&) {
        return false;
    }
}

void ReadByType(const BString& file, unsigned int flags) {
    BGeoReference reference;
    try {
        BMapAnchor::Read(EReferenceType::WLD, file, reference, 0, 0, EMathTransformType::Affine, flags,
                         nullptr);
    } catch (const BException&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile memory;
    static const bool quiet = [] {
        BLogger::Instance()->SetSink([](ELogSeverity, const BString&) {});
        return true;
    }();
    static_cast<void>(quiet);
    memory.Fill(data, size);
    const BString file(memory.Path());
    ReadByType(file, 0);
    ReadByType(file, BMapAnchor::kStrictTransform | BMapAnchor::kStrictCoordSys);
    BGeoReference reference;
    if (!ReadByName(file, reference) || !reference.HasMathTransform()) return 0;
    // A transform that was read can be asked and saved.
    double x = 1.0;
    double y = 1.0;
    reference.MathTransform->ConvertSourceToTarget(x, y);
    BMapAnchor::Save(BString(memory.Out()), reference, 1, 1, BString(), nullptr);
    return 0;
}
