#include "raster/mrsid/BRefMrSID.h"

#include "common/policy/ReferenceFormat.h"
#include "raster/jp2/HeaderReaders.h"

#include "common/files/InputFile.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/Strictness.h"
#include "common/storing/StoreTransform.h"
#include "raster/gdal/HasGdalDriver.h"
#include "raster/geotiff/BRefGeoTIFF.h"
#include "raster/mrsid/MrSidKit.h"
#include "sidecar/wld/WorldFile.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <MapAnchor/BGeoReferenceNotSupportedException.h>
#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BFile.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/ReferenceTags.h>

#include <cstdint>
#include <memory>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BException;
using Tellurion::BFile;
using Tellurion::BFileUtilities;
using Tellurion::BGeoReference;
using Tellurion::BIdentifier;
using Tellurion::BLogger;
using Tellurion::BMathTransform;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::EFileMode;
using Tellurion::ELogSeverity;

namespace {

constexpr const char* kSource = "BRefMrSID::Read";
/// A text that hosts know, spelling included.
constexpr const char* kWriteSource = "BrefMrSID::Write";
constexpr const char* kWriteRefusal = "MrSID raster image files canot be writen using this method.";

constexpr const char* kProjectedKey = "GEOTIFF_NUM::3072::ProjectedCSTypeGeoKey";
constexpr const char* kGeographicKey = "GEOTIFF_NUM::2048::GeographicTypeGeoKey";
constexpr const char* kTextKey = "IMAGE::WKT";

constexpr FailureTexts kTexts = {
    .source = kSource, .affine_line = "BRefMrSID::Read Failure setting the BMathTransform ERROR (%ls)"};

/// A reader of the kit is given back, never deleted.
struct Releaser {
    template <class Reader>
    void operator()(Reader* reader) const {
        reader->release();
    }
};
template <class Reader>
using Owned = std::unique_ptr<Reader, Releaser>;

/// What the kit says of an image.
struct SidImage {
    bool is_mrsid = false;
    AffineTerms terms;  ///< as the kit states them: from the centre of the first pixel
    bool has_key = false;
    bool has_code = false;
    int code = 0;
    BString text;  ///< well-known text, of newer encoders
};

template <class Reader>
SidImage Describe(const Reader& reader) {
    SidImage image;
    AffineTerms& t = image.terms;
    reader.getGeoCoord().get(t.c, t.f, t.a, t.e, t.b, t.d);
    const auto& metadata = reader.getMetadata();
    image.has_key = metadata.has(kProjectedKey) || metadata.has(kGeographicKey);
    const LizardTech::LTIMetadataRecord* record = nullptr;
    if (image.has_key) {
        image.has_code =
            metadata.get(kProjectedKey, record) == 0 || metadata.get(kGeographicKey, record) == 0;
        if (image.has_code) image.code = *static_cast<const std::uint16_t*>(record->getScalarData());
    }
#ifndef MAPANCHOR_WITH_MRSID_SDK
    if (metadata.get(kTextKey, record) == 0) image.text = static_cast<const char*>(record->getScalarData());
#endif
    return image;
}

enum class Opened { Yes, No, NoReader };

Opened OpenMrSid(const LizardTech::LTFileSpec& spec, SidImage& image) {
    constexpr bool kUseWorldFile = false;
    constexpr auto kMemoryUsage = static_cast<LizardTech::MrSIDMemoryUsage>(1);
    constexpr auto kStreamUsage = static_cast<LizardTech::MrSIDStreamUsage>(3);
    const Owned<LizardTech::MrSIDImageReader> reader(LizardTech::MrSIDImageReader::create());
    if (!reader) return Opened::NoReader;
    if (reader->initialize(spec, kUseWorldFile, kMemoryUsage, kStreamUsage) != 0) return Opened::No;
    image = Describe(*reader);
    image.is_mrsid = true;
    return Opened::Yes;
}

bool OpenJpeg2000(const LizardTech::LTFileSpec& spec, SidImage& image) {
    constexpr bool kUseWorldFile = true;
    const Owned<LizardTech::J2KImageReader> reader(LizardTech::J2KImageReader::create());
    if (!reader || reader->initialize(spec, kUseWorldFile, -1.0F, true, -1) != 0) return false;
    image = Describe(*reader);
    return true;
}

/// Stores the system of the key. The text of a failure, empty without one.
BString StoreKeySystem(const SidImage& image, BGeoReference& reference) {
    if (!image.has_code) {
        BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                       "BRefMrSID::Read Failed to find Coordinate System.");
        return {};
    }
    const BString code = BString::Format("%i", image.code);
    try {
        BCoordSys* const system = BCoordSysRepository::Instance()->GetCoordSys(BIdentifier("EPSG", code));
        if (!system) return BString::Format("Could not find EPSG system %ls.", code);
        reference.SetCoordSys(BSharedPtr<BCoordSys>(system));
        return {};
    } catch (const BException& error) {
        BString message = error.GetDetailedMessage();
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error,
            "BRefMrSID::Read could not read Coordinate System { EPSG : %ls } ERROR (%ls).", code, message);
        return message;
    }
}

/// Its numbers are those of the pixel's centre, as the affine of this class is.
bool ReadWorldFileBeside(const BString& file, const char* extension, BGeoReference& reference) {
    BFile in(BFileUtilities::ChangeExtension(file, extension));
    if (!in.Open(EFileMode::Read, EFileMode::Text)) return false;
    const WorldFile world = ParseWorldFile(in);
    const auto& line = world.line;
    const AffineTerms centre = {line[0], line[2], line[4], line[1], line[3], line[5]};
    return world.IsComplete() && StoreAffine(reference, centre, OnFailure::GoOn, kTexts);
}

/// Stands in for GDAL's MrSID driver, which few builds of GDAL have: a world file
/// beside the image, and the text among its metadata.
bool ReadInPlaceOfDriver(const BString& file, const BString& text, BGeoReference& reference) {
    if (!ReadWorldFileBeside(file, "sdw", reference)) ReadWorldFileBeside(file, "wld", reference);
    try {
        if (BCoordSys* const system = text.IsEmpty() ? nullptr : BCoordSys::FromWKT(text))
            reference.SetCoordSys(BSharedPtr<BCoordSys>(system));
    } catch (const BException& error) {
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error, "BRefMrSID::Read could not read Coordinate System { %ls } ERROR (%ls).",
            text, error.GetDetailedMessage());
    }
    return true;
}

bool ReadByGdal(const BString& file, const SidImage& image, BGeoReference& reference) {
    if (image.is_mrsid && !HasGdalDriver("MrSID")) return ReadInPlaceOfDriver(file, image.text, reference);
    return BRefGeoTIFF::Read(file, reference, 0, 0);
}

void CopyAffine(const BGeoReference& from, BGeoReference& to) {
    AffineTerms t;
    from.MathTransform->GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    constexpr bool kOptimizeFor2D = true;
    const std::unique_ptr<BMathTransform> transform(
        BMathTransform::CreateAffine(t.a, t.b, t.c, t.d, t.e, t.f, kOptimizeFor2D));
    if (transform) to.SetMathTransform(*transform);
}

/// What the kit left open GDAL may know of the same file; its control points are dropped.
void FillByGdal(const BString& file, const SidImage& image, BGeoReference& reference) {
    if (reference.HasCoordSys() && reference.HasMathTransform()) return;
    BGeoReference local;
    if (!ReadByGdal(file, image, local)) return;
    if (!reference.HasCoordSys() && local.HasCoordSys()) reference.SetCoordSys(local.CoordSys);
    if (reference.HasMathTransform() || !local.HasMathTransform()) return;
    CopyAffine(local, reference);
    // GDAL counts from the corner, unlike the stand-in for its driver.
    ReadNotes* const notes = ReadNotes::Current();
    if (notes && !image.is_mrsid) notes->centre_anchored = false;
}

void RequireResolution(const BString& file, const SidImage& image) {
    if (image.terms.a != 0.0 && image.terms.e != 0.0) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "BRefMrSID::Read Failure XRes and/or YRes is zero!");
    throw BGeoReferenceInvalidReferenceFileException(
        kSource, BString::Format("File <%ls> is an invalid MrSID file.  XRes and/or YRes is zero", file));
}

}  // namespace

bool BRefMrSID::Read(const BString& file, BGeoReference& reference) {
    const LizardTech::LTFileSpec spec(file.Utf8(), nullptr, nullptr);
    SidImage image;
    if (OpenMrSid(spec, image) != Opened::Yes && !OpenJpeg2000(spec, image)) return false;
    StoreAffine(reference, image.terms, OnFailure::GoOn, kTexts);
    if (image.has_key) StoreKeySystem(image, reference);
    FillByGdal(file, image, reference);
    return true;
}

void BRefMrSID::Read(const BString& file, const unsigned int& flags, BGeoReference& reference) {
    const LizardTech::LTFileSpec spec(file.Utf8(), nullptr, nullptr);
    const Strictness strictness(flags);
    SidImage image;
    switch (OpenMrSid(spec, image)) {
        case Opened::NoReader:
            return;
        case Opened::No:
            ThrowUnreadable(kSource, file);
        case Opened::Yes:
            break;
    }
    RequireResolution(file, image);
    StoreAffine(reference, image.terms, strictness.Transform(), kTexts);
    const BString failure = image.has_key ? StoreKeySystem(image, reference) : BString();
    FillByGdal(file, image, reference);
    // A system that GDAL found makes up for a key that led nowhere.
    if (!reference.HasCoordSys() && !failure.IsEmpty() && strictness.CoordSys() == OnFailure::Throw)
        throw BGeoReferenceInvalidCoordSysException(kSource, failure);
}

void BRefMrSID::Write(const BString&, const BGeoReference&) {
    throw BGeoReferenceNotSupportedException(kWriteSource, kWriteRefusal);
}

void BRefMrSID::Write(const BString&, const unsigned int&, const BGeoReference&) {
    throw BGeoReferenceNotSupportedException(kWriteSource, kWriteRefusal);
}

ReferenceFormat BRefMrSID::Format() {
    return {.name = "SID",
            .title = "MrSID",
            .type = Tellurion::EReferenceType::MrSID,
            .typed_read = [](const ReadCall& call) { Read(call.file, call.flags, call.reference); },
            .typed_save = [](const SaveCall& call) { Write(call.file, call.flags, call.reference); },
            .named_read = [](const ReadCall& call) { return Read(call.file, call.reference); },
            .refuses_save = true,
            .served_by = HeaderReaders::MrSid(),
            .missing = HeaderReaders::MissingForMrSid,
            .read_extensions = {Tellurion::REFERENCE_SID_TAG.GetUnits()},
            .centre_anchored = true};
}

}  // namespace MapAnchor
