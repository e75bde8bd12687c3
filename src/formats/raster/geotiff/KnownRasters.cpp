#include "raster/geotiff/KnownRasters.h"

#include "common/files/FolderNames.h"
#include "common/policy/ReadNotes.h"
#include "raster/gdal/GdalSettings.h"
#include "raster/geotiff/GeoTiffHeader.h"

#include <Tellurion/Ascii.h>
#include <Tellurion/LruCache.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cctype>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace MapAnchor {

using Tellurion::BString;

namespace {

thread_local int living = 0;
std::atomic<long> answered = 0;

using Answer = std::shared_ptr<const GdalReference>;
/// An archive has few systems, and few ways to store its rasters.
constexpr std::size_t kMaxAnswers = 4096;

Tellurion::LruCache<Answer, std::string>& Answers() {
    static auto* const answers = new Tellurion::LruCache<Answer, std::string>(kMaxAnswers);
    return *answers;
}

/// The shapes of transforms that GDAL computes in another way than we do.
class DistrustedShapes {
public:
    bool Contains(const std::string& shape) const {
        const std::lock_guard lock(mutex_);
        return shapes_.contains(shape);
    }
    void Add(const std::string& shape) {
        const std::lock_guard lock(mutex_);
        shapes_.insert(shape);
    }

private:
    mutable std::mutex mutex_;
    std::set<std::string> shapes_;
};

DistrustedShapes& Distrusted() {
    static auto* const shapes = new DistrustedShapes;
    return *shapes;
}

/// True when GDAL would see another file that is named after the raster.
bool HasNeighbours(const std::string& path) {
    const std::size_t start = path.rfind('/') + 1;
    const std::string name = path.substr(start);
    const std::string stem = name.substr(0, name.rfind('.'));
    const auto names = NamesBeginningWith(stem, path.substr(0, start));
    if (!names) return true;
    for (const std::string& other : *names) {
        const bool goes_on =
            other.size() > stem.size() && std::isalnum(static_cast<unsigned char>(other[stem.size()]));
        if (other != name && !goes_on) return true;
    }
    return false;
}

/// Empty for a raster that is GDAL's alone.
std::optional<GeoTiffHeader> HeaderOf(const BString& file, Sidecars sidecars) {
    if (!HeaderReads::AreOn() || !ReadNotes::Current() || ReadNotes::Explaining()) return std::nullopt;
    const std::string path = file.StdStr();
    const std::string ending = Tellurion::LowerAscii(path.substr(std::min(path.size(), path.rfind('.'))));
    if (ending != ".tif" && ending != ".tiff") return std::nullopt;
    if (sidecars == Sidecars::Shown && HasNeighbours(path)) return std::nullopt;
    return GeoTiffHeader::Read(file);
}

bool AreAlike(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool AreAlike(const std::optional<AffineTerms>& ours, const std::optional<AffineTerms>& gdals) {
    if (!ours || !gdals) return ours.has_value() == gdals.has_value();
    return AreAlike(ours->a, gdals->a) && AreAlike(ours->b, gdals->b) && AreAlike(ours->c, gdals->c) &&
           AreAlike(ours->d, gdals->d) && AreAlike(ours->e, gdals->e) && AreAlike(ours->f, gdals->f);
}

/// Keeps what GDAL answered, but for the transform, which is the file's own.
void Learn(const GeoTiffHeader& header, const GdalReference& gdals) {
    if (!gdals.is_lone_geotiff || gdals.point_count != 0 || HasGdalSettings()) return;
    if (!AreAlike(header.Terms(), gdals.terms)) return Distrusted().Add(header.shape);
    auto answer = std::make_shared<GdalReference>(gdals);
    answer->terms.reset();
    Answers().Keep(header.key, std::move(answer));
}

std::optional<GdalReference> Recall(const GeoTiffHeader& header) {
    Answer answer;
    if (!Answers().Find(header.key, answer) || Distrusted().Contains(header.shape) || HasGdalSettings())
        return std::nullopt;
    GdalReference known = *answer;
    known.terms = header.Terms();
    ReadNotes::Current()->SetRasterSize(header.width, header.height);
    ++answered;
    return known;
}

}  // namespace

HeaderReads::HeaderReads() {
    ++living;
}

HeaderReads::~HeaderReads() {
    --living;
}

bool HeaderReads::AreOn() {
    return living > 0;
}

long HeaderReads::Count() {
    return answered;
}

std::optional<GdalReference> ReadRaster(const BString& file, RasterKinds kinds, Sidecars sidecars) {
    const auto header = HeaderOf(file, sidecars);
    if (!header) return ReadGdalReference(file, kinds, sidecars);
    if (auto known = Recall(*header)) return known;
    auto gdals = ReadGdalReference(file, kinds, sidecars);
    if (gdals) Learn(*header, *gdals);
    return gdals;
}

}  // namespace MapAnchor
