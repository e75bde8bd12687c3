#pragma once

#include "raster/mrsid/SidHeader.h"

#include <cstdint>
#include <string>

/// The operations of the MrSID kit that MapAnchor calls, answered from the files'
/// headers. They keep the kit's names and meanings, so that a build with the kit can
/// take their place (MAPANCHOR_WITH_MRSID_SDK).
namespace LizardTech {

using LT_STATUS = unsigned int;
enum MrSIDMemoryUsage : int {};
enum MrSIDStreamUsage : int {};

constexpr LT_STATUS kOk = 0;
constexpr LT_STATUS kFailed = 1;

/// Holds the name of a file, in UTF-8.
class LTFileSpec {
public:
    explicit LTFileSpec(const char* path, const char* = nullptr, const char* = nullptr) : path_(path) {}
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

/// The centre of the top left pixel, the resolutions (that of y negative where rows go
/// south) and the rotation terms; zeros for an image without a position.
class LTIGeoCoord {
public:
    LTIGeoCoord() = default;
    explicit LTIGeoCoord(const MapAnchor::SidPosition& position) : position_(position) {}
    void get(double& x, double& y, double& xRes, double& yRes, double& xRot, double& yRot) const;

private:
    MapAnchor::SidPosition position_;
};

/// One value of the metadata: a u16, or a text that a NUL ends.
class LTIMetadataRecord {
public:
    LTIMetadataRecord() = default;
    explicit LTIMetadataRecord(std::uint16_t number) : number_(number), is_text_(false) {}
    explicit LTIMetadataRecord(std::string text) : text_(std::move(text)) {}
    const void* getScalarData() const;

private:
    std::string text_;
    std::uint16_t number_ = 0;
    bool is_text_ = true;
};

/// The records that are asked for here: the GeoTIFF keys 3072 and 2048, and IMAGE::WKT.
class LTIMetadataDatabase {
public:
    LTIMetadataDatabase() = default;
    explicit LTIMetadataDatabase(MapAnchor::SidHeader header);
    bool has(const char* key) const { return Find(key) != nullptr; }
    LT_STATUS get(const char* key, const LTIMetadataRecord*& record) const;

private:
    const LTIMetadataRecord* Find(const char* key) const;

    std::optional<LTIMetadataRecord> projected_;
    std::optional<LTIMetadataRecord> geographic_;
    std::optional<LTIMetadataRecord> text_;
};

/// What both readers answer once a file has been opened. release() gives one back.
class LTIImageReader {
public:
    const LTIGeoCoord& getGeoCoord() const { return geo_coord_; }
    const LTIMetadataDatabase& getMetadata() const { return metadata_; }
    void release() { delete this; }

    LTIImageReader(const LTIImageReader&) = delete;
    LTIImageReader& operator=(const LTIImageReader&) = delete;

protected:
    LTIImageReader() = default;
    virtual ~LTIImageReader() = default;
    void Take(MapAnchor::SidHeader header);

private:
    LTIGeoCoord geo_coord_;
    LTIMetadataDatabase metadata_;
};

class MrSIDImageReader : public LTIImageReader {
public:
    static MrSIDImageReader* create() { return new MrSIDImageReader; }
    /// A world file beside the image is not looked at, which the callers ask for.
    LT_STATUS initialize(const LTFileSpec& file, bool useWorldFile, MrSIDMemoryUsage, MrSIDStreamUsage);
};

class J2KImageReader : public LTIImageReader {
public:
    static J2KImageReader* create() { return new J2KImageReader; }
    /// A world file counts where the file itself has no position.
    LT_STATUS initialize(const LTFileSpec& file, bool useWorldFile, float, bool, int);
};

}  // namespace LizardTech
