#include "raster/gdal/Thumbnail.h"

#include "raster/gdal/GdalRaster.h"

#include <Tellurion/QuietGdal.h>

#include <cpl_vsi.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace MapAnchor {

using Tellurion::BString;

namespace {

constexpr std::size_t kChannels = 4;  // red, green, blue, and how much of the pixel has a value
constexpr int kSamples = 3;           // per pixel of the thumbnail, across and down
constexpr float kBright = 255.0F;

/// Where a pixel's colour comes from.
struct Source {
    std::vector<GDALRasterBand*> bands;           ///< one for gray and for a palette, else red, green, blue
    GDALRasterBand* mask = nullptr;               ///< null when every pixel has a value
    std::vector<std::array<float, 3>> palette{};  ///< by value; empty when there is none
    bool is_bytes = true;                         ///< values are brightnesses already
    float brightness = 1.0F;                      ///< of a value, where they are
};

GDALRasterBand* BandOf(GDALDataset& raster, GDALColorInterp color) {
    for (int i = 1; i <= raster.GetRasterCount(); ++i)
        if (raster.GetRasterBand(i)->GetColorInterpretation() == color) return raster.GetRasterBand(i);
    return nullptr;
}

std::vector<std::array<float, 3>> PaletteOf(GDALRasterBand& band) {
    std::vector<std::array<float, 3>> palette;
    const GDALColorTable* table = band.GetColorTable();
    constexpr int kMaxColors = 65'536;
    for (int i = 0; table && i < std::min(table->GetColorEntryCount(), kMaxColors); ++i) {
        GDALColorEntry color{};
        table->GetColorEntryAsRGB(i, &color);
        palette.push_back(
            {static_cast<float>(color.c1), static_cast<float>(color.c2), static_cast<float>(color.c3)});
    }
    return palette;
}

/// Bands of fewer bits than a byte hold smaller values.
float BrightnessOf(GDALRasterBand& band) {
    const char* const bits = band.GetMetadataItem("NBITS", "IMAGE_STRUCTURE");
    const int count = bits ? std::atoi(bits) : 8;
    return count > 0 && count < 8 ? kBright / static_cast<float>((1 << count) - 1) : 1.0F;
}

Source SourceOf(GDALDataset& raster) {
    Source source;
    GDALRasterBand* const first = raster.GetRasterBand(1);
    source.bands = {BandOf(raster, GCI_RedBand), BandOf(raster, GCI_GreenBand), BandOf(raster, GCI_BlueBand)};
    if (std::ranges::count(source.bands, nullptr) > 0) source.bands = {first};
    if (source.bands.size() == 1) source.palette = PaletteOf(*first);
    for (GDALRasterBand* band : source.bands)
        if (band->GetRasterDataType() != GDT_Byte) source.is_bytes = false;
    source.brightness = BrightnessOf(*first);
    if (!(source.bands.front()->GetMaskFlags() & GMF_ALL_VALID))
        source.mask = source.bands.front()->GetMaskBand();
    return source;
}

/// GDAL keeps some blocks in memory, which must not be of any size.
bool HasBoundedBlocks(const Source& source) {
    constexpr std::int64_t kMaxBytes = std::int64_t{128} << 20;
    int width = 0;
    int height = 0;
    for (GDALRasterBand* band : source.bands) {
        band->GetBlockSize(&width, &height);
        const std::int64_t pixel = GDALGetDataTypeSizeBytes(band->GetRasterDataType());
        if (width <= 0 || height <= 0 || width > kMaxBytes / height / std::max<std::int64_t>(pixel, 1))
            return false;
    }
    return true;
}

/// A part of the raster, as so many samples.
struct Window {
    int left;
    int top;
    int width;
    int height;
    int columns;
    int rows;

    std::size_t IndexOf(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(x);
    }
};

bool ReadSamples(GDALRasterBand& band, const Window& window, std::vector<float>& samples) {
    samples.resize(static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows));
    GDALRasterIOExtraArg nearest;
    INIT_RASTERIO_EXTRA_ARG(nearest);
    return band.RasterIO(GF_Read, window.left, window.top, window.width, window.height, samples.data(),
                         window.columns, window.rows, GDT_Float32, 0, 0, &nearest) == CE_None;
}

class Sampler {
public:
    Sampler(GDALDataset& raster, Source source, int width, int height)
        : raster_(raster),
          source_(std::move(source)),
          width_(width),
          height_(height),
          pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * kChannels, 0.0F) {}

    /// Empty when all was read, else why not.
    std::string Read() {
        constexpr std::chrono::seconds kMaxTime{4};
        const auto end = std::chrono::steady_clock::now() + kMaxTime;
        for (int row = 0; row < height_; ++row) {
            if (!ReadRow(row)) return "GDAL cannot read its pixels";
            if (std::chrono::steady_clock::now() > end) return "reading its pixels takes too long";
        }
        return {};
    }
    /// Red, green, blue and opacity of each pixel.
    std::vector<GByte> ToBytes() {
        if (source_.palette.empty() && !source_.is_bytes) Stretch();
        std::vector<GByte> bytes(pixels_.size());
        for (std::size_t i = 0; i < pixels_.size(); i += kChannels) {
            for (std::size_t k = 0; k + 1 < kChannels; ++k)
                bytes[i + k] = static_cast<GByte>(std::lround(std::clamp(pixels_[i + k], 0.0F, kBright)));
            bytes[i + kChannels - 1] = static_cast<GByte>(std::lround(pixels_[i + kChannels - 1] * kBright));
        }
        return bytes;
    }

private:
    bool ReadRow(int row) {
        const auto part = [](int size, int count, int i) {
            return static_cast<int>(static_cast<std::int64_t>(size) * i / count);
        };
        const int top = part(raster_.GetRasterYSize(), height_, row);
        const int height = std::max(part(raster_.GetRasterYSize(), height_, row + 1) - top, 1);
        const int width = raster_.GetRasterXSize();
        const Window window{0,
                            top,
                            width,
                            height,
                            width_ * std::clamp(width / width_, 1, kSamples),
                            std::min(height, kSamples)};
        samples_.resize(source_.bands.size());
        for (std::size_t i = 0; i < source_.bands.size(); ++i)
            if (!ReadSamples(*source_.bands[i], window, samples_[i])) return false;
        mask_.assign(samples_[0].size(), 1.0F);
        if (source_.mask && !ReadSamples(*source_.mask, window, mask_)) return false;
        for (int column = 0; column < width_; ++column)
            Average(window, column, &pixels_[Index(row, column)]);
        return true;
    }
    std::size_t Index(int row, int column) const {
        return (static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                static_cast<std::size_t>(column)) *
               kChannels;
    }
    void Average(const Window& window, int column, float* pixel) {
        const int across = window.columns / width_;
        int valid = 0;
        for (int y = 0; y < window.rows; ++y)
            for (int x = 0; x < across; ++x)
                if (Add(window.IndexOf(column * across + x, y), pixel)) ++valid;
        for (std::size_t k = 0; valid > 0 && k + 1 < kChannels; ++k)
            pixel[k] /= static_cast<float>(valid);
        pixel[kChannels - 1] = static_cast<float>(valid) / static_cast<float>(across * window.rows);
    }
    /// False for a sample without a value.
    bool Add(std::size_t i, float* pixel) const {
        if (!(mask_[i] > 0.0F)) return false;
        for (std::size_t k = 0; k + 1 < kChannels; ++k) {
            const float value = samples_[std::min(k, samples_.size() - 1)][i];
            if (!std::isfinite(value)) return false;
            if (source_.palette.empty())
                pixel[k] += value * source_.brightness;
            else if (value >= 0.0F && value < static_cast<float>(source_.palette.size()))
                pixel[k] += source_.palette[static_cast<std::size_t>(value)][k];
        }
        return true;
    }
    void Stretch() {
        std::vector<float> values;
        for (std::size_t i = 0; i < pixels_.size(); i += kChannels)
            if (pixels_[i + kChannels - 1] > 0.0F) values.insert(values.end(), &pixels_[i], &pixels_[i] + 3);
        if (values.empty()) return;
        std::ranges::sort(values);
        constexpr std::size_t kShare = 50;  // 2 of 100
        const float low = values[values.size() / kShare];
        const float high = values[values.size() - 1 - values.size() / kShare];
        for (std::size_t i = 0; i < pixels_.size(); ++i)
            if (i % kChannels + 1 < kChannels)
                pixels_[i] = high > low ? (pixels_[i] - low) / (high - low) * kBright : kBright / 2;
    }

    GDALDataset& raster_;
    Source source_;
    int width_;
    int height_;
    std::vector<float> pixels_;
    std::vector<std::vector<float>> samples_;
    std::vector<float> mask_;
};

/// A file in memory, removed at the end.
class MemoryFile {
public:
    MemoryFile() {
        static std::atomic<unsigned> number{0};
        name_ = "/vsimem/mapanchor-thumbnail-" + std::to_string(number++) + ".png";
    }
    ~MemoryFile() { VSIUnlink(name_.c_str()); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const char* Name() const { return name_.c_str(); }
    std::string Content() const {
        vsi_l_offset size = 0;
        const GByte* const bytes = VSIGetMemFileBuffer(name_.c_str(), &size, FALSE);
        return bytes ? std::string(bytes, bytes + size) : std::string();
    }

private:
    std::string name_;
};

/// Gray and opaque pictures need one band, others up to four.
std::vector<int> ChannelsOf(const std::vector<GByte>& pixels) {
    bool is_gray = true;
    bool is_opaque = true;
    for (std::size_t i = 0; i < pixels.size(); i += kChannels) {
        is_gray = is_gray && pixels[i] == pixels[i + 1] && pixels[i] == pixels[i + 2];
        is_opaque = is_opaque && pixels[i + kChannels - 1] == 255;
    }
    std::vector<int> channels = is_gray ? std::vector{0} : std::vector{0, 1, 2};
    if (!is_opaque) channels.push_back(3);
    return channels;
}

std::string ToPng(const std::vector<GByte>& pixels, int width, int height) {
    GDALDriver* const memory = GetGDALDriverManager()->GetDriverByName("MEM");
    GDALDriver* const png = GetGDALDriverManager()->GetDriverByName("PNG");
    const std::vector<int> channels = ChannelsOf(pixels);
    const int count = static_cast<int>(channels.size());
    const GdalRaster picture(memory && png ? memory->Create("", width, height, count, GDT_Byte, nullptr)
                                           : nullptr);
    if (!picture) return {};
    for (int i = 0; i < count; ++i) {
        GDALRasterBand* const band = picture->GetRasterBand(i + 1);
        // GDAL only reads what it writes.
        auto* const from = const_cast<GByte*>(pixels.data() + channels[static_cast<std::size_t>(i)]);
        if (band->RasterIO(GF_Write, 0, 0, width, height, from, width, height, GDT_Byte, kChannels,
                           static_cast<GSpacing>(kChannels) * width, nullptr) != CE_None)
            return {};
    }
    const MemoryFile file;
    const GdalRaster written(png->CreateCopy(file.Name(), picture.get(), FALSE, nullptr, nullptr, nullptr));
    return written ? file.Content() : std::string();
}

}  // namespace

std::optional<Thumbnail> MakeThumbnail(const BString& file, int max_width, int max_height,
                                       std::string& why_not) {
    const Tellurion::QuietGdal quiet;
    const auto fail = [&why_not](std::string why) {
        why_not = std::move(why);
        return std::optional<Thumbnail>();
    };
    const GdalRaster raster = OpenRaster(file);
    if (!raster || raster->GetRasterCount() < 1) return fail("GDAL reads no pixels from it");
    const double width = raster->GetRasterXSize();
    const double height = raster->GetRasterYSize();
    const double scale = std::min({max_width / width, max_height / height, 1.0});
    Thumbnail thumbnail;
    thumbnail.width = std::max(static_cast<int>(std::lround(width * scale)), 1);
    thumbnail.height = std::max(static_cast<int>(std::lround(height * scale)), 1);
    Source source = SourceOf(*raster);
    if (!HasBoundedBlocks(source)) return fail("it is stored in blocks that are too large");
    Sampler sampler(*raster, std::move(source), thumbnail.width, thumbnail.height);
    if (const std::string why = sampler.Read(); !why.empty()) return fail(why);
    thumbnail.png = ToPng(sampler.ToBytes(), thumbnail.width, thumbnail.height);
    if (thumbnail.png.empty()) return fail("this GDAL cannot write PNG");
    return thumbnail;
}

}  // namespace MapAnchor
