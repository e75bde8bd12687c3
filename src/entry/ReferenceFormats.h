#pragma once

#include "common/SaveRefusal.h"

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

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
    const unsigned int& flags;  ///< typed road only
    const Tellurion::BParamList* params;
    Tellurion::BString* used_file;  ///< named road only
};

/// The arguments of a save.
struct SaveCall {
    const Tellurion::BString& file;
    const Tellurion::BGeoReference& reference;
    long width;
    long height;
    const Tellurion::BString& image_name;
    const unsigned int& flags;  ///< typed road only
    const Tellurion::BParamList* params;
};

using TypedRead = void (*)(const ReadCall& call);
using NamedRead = bool (*)(const ReadCall& call);
using TypedSave = void (*)(const SaveCall& call);
using NamedSave = bool (*)(const SaveCall& call);

/// One kind of reference and who serves it. A function that is null stands for a
/// road that this kind does not have.
struct ReferenceFormat {
    const char* name;
    const char* title;
    Tellurion::EReferenceType type;  ///< Reserved for a kind without a number
    TypedRead typed_read = nullptr;
    TypedSave typed_save = nullptr;
    NamedRead named_read = nullptr;
    NamedSave named_save = nullptr;
    const char* second_reader = nullptr;  ///< the kind that reads by name what this one does not
    bool refuses_typed_read = false;      ///< its typed_read only throws
    bool centre_anchored = false;         ///< its affine starts at the centre of the top left pixel
    SaveRefusal refusal = {};             ///< without a source: it does not refuse
    const char* served_by = nullptr;      ///< where there is a choice of readers, the one of this build
    const char* (*missing)() = nullptr;   ///< the driver that this machine lacks; null for none
    std::vector<std::u16string_view> read_extensions = {};  ///< lower case, with the dot
    std::vector<std::u16string_view> save_extensions = {};
};

/// A reader that is tried on files whose extension says nothing.
struct ReferenceProbe {
    const char* name;  ///< of its ReferenceFormat
    bool (*may_be)(const Tellurion::BString& file) =
        nullptr;  ///< a look at the first bytes; null when it has none
    NamedRead read = nullptr;
};

/// Every kind of reference; dispatch goes by the first that matches.
const std::vector<ReferenceFormat>& ReferenceFormatTable();

/// The probes, in the order in which they are tried.
const std::vector<ReferenceProbe>& ReferenceProbeTable();

/// Extensions of rasters that carry no reference of their own.
bool IsPlainRasterExtension(std::u16string_view extension);

const ReferenceFormat* FindFormatByType(Tellurion::EReferenceType type);
const ReferenceFormat* FindFormatToRead(std::u16string_view extension);
/// Reads by name; the kind whose reader answered, null when none did.
const ReferenceFormat* ReadByName(const ReferenceFormat& format, const ReadCall& call);
const ReferenceFormat* FindFormatToSave(std::u16string_view extension);

}  // namespace MapAnchor
