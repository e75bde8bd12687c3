#pragma once

#include <cstdint>

namespace MapAnchor::HeaderTags {

/// Tag numbers of TIFF 6.0 and GeoTIFF 1.1, and GDAL's own.
enum Tag : std::uint16_t {
    kNewSubfileType = 254,
    kImageWidth = 256,
    kImageLength = 257,
    kStripOffsets = 273,
    kSamplesPerPixel = 277,
    kRowsPerStrip = 278,
    kStripByteCounts = 279,
    kPlanarConfiguration = 284,
    kTileWidth = 322,
    kTileLength = 323,
    kTileOffsets = 324,
    kTileByteCounts = 325,
    kImageDepth = 32997,  ///< of libtiff
    kModelPixelScale = 33550,
    kModelTiepoint = 33922,
    kModelTransformation = 34264,
    kGeoKeyDirectory = 34735,
    kGeoDoubleParams = 34736,
    kGeoAsciiParams = 34737,
    kGdalMetadata = 42112,
};

/// What a tag means for the place of the raster.
enum class Role {
    Unknown,   ///< the file is for GDAL
    Ignored,   ///< resolution, colours and the like
    Presence,  ///< that it is there, and its length, are part of the key
    Key,       ///< part of the key
    Size,      ///< width and height
    Blocks,    ///< lists of strips or tiles, whose lengths must fit
    Transform,
    Metadata,
};

inline Role RoleOf(std::uint16_t tag) {
    switch (tag) {
        case kImageWidth:
        case kImageLength:
            return Role::Size;
        case kStripOffsets:
        case kStripByteCounts:
        case kTileOffsets:
        case kTileByteCounts:
            return Role::Blocks;
        case kModelPixelScale:
        case kModelTiepoint:
        case kModelTransformation:
            return Role::Transform;
        case 320:  // ColorMap: a band without one is not a palette
        case 347:  // JPEGTables
            return Role::Presence;
        case kGdalMetadata:
            return Role::Metadata;
        case kNewSubfileType:
        case 258:  // BitsPerSample
        case 259:  // Compression
        case 262:  // PhotometricInterpretation
        case 266:  // FillOrder
        case 274:  // Orientation
        case kSamplesPerPixel:
        case kRowsPerStrip:
        case kPlanarConfiguration:
        case 317:  // Predictor
        case kTileWidth:
        case kTileLength:
        case 338:  // ExtraSamples
        case 339:  // SampleFormat
        case kGeoKeyDirectory:
        case kGeoDoubleParams:
        case kGeoAsciiParams:
        case 42113:  // GDAL's value for no data
            return Role::Key;
        case 270:    // ImageDescription
        case 271:    // Make
        case 272:    // Model
        case 280:    // MinSampleValue
        case 281:    // MaxSampleValue
        case 282:    // XResolution
        case 283:    // YResolution
        case 296:    // ResolutionUnit
        case 305:    // Software
        case 306:    // DateTime
        case 315:    // Artist
        case 33432:  // Copyright
            return Role::Ignored;
        default:
            return Role::Unknown;
    }
}

}  // namespace MapAnchor::HeaderTags
