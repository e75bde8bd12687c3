#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace MapAnchor {

/// The arguments of a read, as the front door hands them on.
struct ReadCall {
    const Tellurion::BString& file;
    Tellurion::BGeoReference& reference;
    long width;
    long height;
    Tellurion::EMathTransformType math_type;
    const unsigned int& flags;  ///< by type only
    const Tellurion::BParamList* params;
    Tellurion::BString* used_file;  ///< by name only
};

/// The arguments of a save.
struct SaveCall {
    const Tellurion::BString& file;
    const Tellurion::BGeoReference& reference;
    long width;
    long height;
    const Tellurion::BString& image_name;
    const unsigned int& flags;  ///< by type only
    const Tellurion::BParamList* params;
};

using TypedRead = void (*)(const ReadCall& call);
using NamedRead = bool (*)(const ReadCall& call);
using TypedSave = void (*)(const SaveCall& call);
using NamedSave = bool (*)(const SaveCall& call);

/// What a save keeps of a part of a reference.
enum class Keeps { Nothing, ByName, ByType, Always };

/// How a reader is tried on files whose extension says nothing.
struct ReferenceProbe {
    int rank = 0;  ///< the lowest is tried first; 0 for a kind that is not tried
    bool (*may_be)(const Tellurion::BString& file) = nullptr;  ///< a look at the first bytes; may be null
    NamedRead read = nullptr;
};

/// All that anybody asks of a kind of reference. A function that is null is a way in or out
/// that this kind does not have. Each kind defines its row at the end of its own source.
struct ReferenceFormat {
    const char* name;
    const char* title;
    Tellurion::EReferenceType type;  ///< Reserved for a kind without a number
    TypedRead typed_read = nullptr;
    TypedSave typed_save = nullptr;  ///< of a kind that is read only, what refuses
    NamedRead named_read = nullptr;
    NamedSave named_save = nullptr;
    const char* second_reader = nullptr;  ///< the kind that reads by name what this one does not
    bool refuses_typed_read = false;      ///< its typed_read only throws
    bool refuses_save = false;            ///< its typed_save only throws
    const char* served_by = nullptr;      ///< where there is a choice of readers, the one of this build
    const char* (*missing)() = nullptr;   ///< the driver that this machine lacks; null for none
    std::vector<std::u16string_view> read_extensions = {};  ///< lower case, with the dot
    std::vector<std::u16string_view> save_extensions = {};
    /// Ends of names that mean this kind to people, though only its functions by type take them.
    std::vector<std::u16string_view> typed_extensions = {};
    ReferenceProbe probe = {};

    bool centre_anchored = false;  ///< its affine starts at the centre of the top left pixel
    bool sidecar = false;          ///< a file beside a raster, without pixels
    bool in_place = false;         ///< a save changes a file that exists, and leaves its pixels alone

    Keeps coord_sys = Keeps::Nothing;
    Keeps vertical_unit = Keeps::Nothing;
    bool rotation = false;
    /// The most general fit that it holds without points.
    Tellurion::EMathTransformType widest_fit = Tellurion::EMathTransformType::Affine;
    bool points = false;                 ///< and with them a transform beyond affine
    bool point_fractions = false;        ///< with the fractions of their pixels
    bool disabled_points = false;        ///< with the mark that they are disabled
    bool skips_disabled_points = false;  ///< they are left out; else written like the others
    bool point_names = false;
    bool point_heights = false;
    std::size_t min_points = 0;     ///< fewer are not written; the transform takes their place
    bool datum_shift = false;       ///< a shift that the system's text states
    int decimals = 0;               ///< of positions; 0 where no digit is lost
    int scale_decimals = 0;         ///< of the other terms of an affine
    bool own_system_names = false;  ///< coordinate systems go by names or numbers of the kind's own
    bool needs_coord_sys = false;   ///< without one a default is written
    bool needs_size = false;        ///< for a transform without points, which becomes the corners
    bool states_size = false;       ///< writes the raster's size
    bool names_image = false;       ///< writes the raster's name
};

}  // namespace MapAnchor
