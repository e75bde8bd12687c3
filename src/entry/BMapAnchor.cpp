#include <MapAnchor/BMapAnchor.h>

#include "PdfParameters.h"
#include "ReferenceFormats.h"
#include "raster/gdal/GdalDrivers.h"
#include "raster/geotiff/BRefGeoTIFF.h"
#include "sidecar/ers/BRefERS.h"
#include "sidecar/points/BRefPoints.h"

#include <Tellurion/BException.h>
#include <Tellurion/BFile.h>
#include <Tellurion/BFileContentNotValidException.h>
#include <Tellurion/BFileNotFoundException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/BUnsupportedFileTypeException.h>
#include <Tellurion/LibraryOnDemand.h>

namespace MapAnchor {

using Tellurion::BException;
using Tellurion::BFile;
using Tellurion::BFileContentNotValidException;
using Tellurion::BFileNotFoundException;
using Tellurion::BFileUtilities;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BParamList;
using Tellurion::BString;
using Tellurion::BUnsupportedFileTypeException;
using Tellurion::EFileMode;
using Tellurion::ELogSeverity;
using Tellurion::EMathTransformType;
using Tellurion::EReferenceType;

const BString BMapAnchor::kValPDFCropType(PdfParameters::kCropType);
const BString BMapAnchor::kValPDFResolution(PdfParameters::kResolution);
const BString BMapAnchor::kValPDFWide(PdfParameters::kWide);
const BString BMapAnchor::kValPDFPage(PdfParameters::kPage);
const BString BMapAnchor::kValPDFMap(PdfParameters::kMap);
const BString BMapAnchor::kValPDFShown(PdfParameters::kShown);
const BString BMapAnchor::kValPDFPassword(PdfParameters::kPassword);
const BString BMapAnchor::kValPDFIncremental(PdfParameters::kIncremental);
const BString BMapAnchor::kValPDFWkt2(PdfParameters::kWkt2);
const BString BMapAnchor::kValPDFFrame(PdfParameters::kFrame);
const BString BMapAnchor::kValPDFAdd(PdfParameters::kAdd);
const BString BMapAnchor::kValPDFMapName(PdfParameters::kMapName);
const BString BMapAnchor::kValPointsSystem(BRefPoints::kSystem);
const BString BMapAnchor::kValPointsOldHeader(BRefPoints::kOldHeader);
const BString BMapAnchor::kValGdalDrivers(GdalDrivers::kKey);
const BString BMapAnchor::kValReplaceSystem(BRefGeoTIFF::kReplaceSystemKey);
const BString BMapAnchor::kValErsCodes(BRefERS::kCodesKey);

namespace {

constexpr const char* kReadSource = "BMapAnchor::Read";
constexpr const char* kSaveSource = "BMapAnchor::Save";

/// First line of a settings file that six numbers might follow.
const BString kTransformSettings("[Transform Settings]");

void RequireName(const BString& file, const char* source) {
    if (file.IsEmpty()) throw BFileNotFoundException(source, "No file specified.");
}

BString LowerExtension(const BString& file) {
    return BFileUtilities::GetExtension(BFileUtilities::CompletePath(file)).ToLower();
}

BString RequireExtension(const BString& file, const char* source) {
    BString extension = LowerExtension(file);
    if (extension.IsEmpty())
        throw BFileNotFoundException(source, BString::Format("File Extension for <%ls> isn't valid.", file));
    return extension;
}

[[noreturn]] void ThrowUnsupported(const BString& file, const char* source) {
    throw BUnsupportedFileTypeException(
        source, BString::Format("File <%ls> is not a supported reference file.", file));
}

/// Runs `work`; a failure is logged by that format on its way out.
template <class Work>
auto Guarded(const char* log_format, const BString& file, Work work) {
    try {
        return work();
    } catch (const BException& error) {
        BLogger::Instance()->WriteLine(ELogSeverity::Error, log_format, file, error.GetDetailedMessage());
        throw;
    }
}

bool IsSettingsFile(const BString& path) {
    constexpr std::size_t kLimit = 22;
    BFile file(path);
    BString line;
    return file.Open(EFileMode::Read, EFileMode::Text) && file.ReadLine(line, kLimit) &&
           line.GetLength() > 1 && line == kTransformSettings;
}

bool HasReference(const BGeoReference& reference) {
    return reference.HasCoordSys() || reference.HasMathTransform() || !reference.PointPairVector.empty();
}

constexpr const char* kReadLog =
    "BMapAnchor::Read Attempting to read <%ls> threw the following exception\n%ls.";
constexpr const char* kSaveLog =
    "BMapAnchor::Save Attempting to save <%ls> threw the following exception\n%ls.";
constexpr const char* kProbeLog =
    "BMapAnchor::TryOpeningForRead Attempting to open <%ls> threw the following exception\n%ls.";

/// Reads and saves by name have no flags.
constexpr unsigned int kNoFlags = 0;

}  // namespace

void BMapAnchor::Read(const EReferenceType& type, const BString& file, BGeoReference& reference, long width,
                      long height, EMathTransformType mathType, unsigned int flags,
                      const BParamList* params) {
    RequireName(file, kReadSource);
    if (!BFileUtilities::Exists(file))
        throw BFileNotFoundException(kReadSource, BString::Format("File <%ls> does NOT exist.", file));
    const ReferenceFormat* format = FindFormatByType(type);
    if (!format || !format->typed_read) ThrowUnsupported(file, kReadSource);
    const GdalDrivers::Scope allowed(params);
    BGeoReference local;
    format->typed_read({file, local, width, height, mathType, flags, params, nullptr});
    Tellurion::LibraryOnDemand::RequireAll();
    reference = local;
}

void BMapAnchor::Read(const BString& file, BGeoReference& reference, BString& usedFile, long width,
                      long height, EMathTransformType mathType, const BParamList* params) {
    ReadAndName(file, reference, usedFile, width, height, mathType, params);
}

const char* BMapAnchor::ReadAndName(const BString& file, BGeoReference& reference, BString& usedFile,
                                    long width, long height, EMathTransformType mathType,
                                    const BParamList* params) {
    RequireName(file, kReadSource);
    const BString extension = RequireExtension(file, kReadSource);
    usedFile = file;
    const char* const kind = Guarded(kReadLog, file, [&]() -> const char* {
        const std::u16string& wanted = extension.GetUnits();
        if (const ReferenceFormat* format = FindFormatToRead(wanted)) {
            const ReadCall call{file, reference, width, height, mathType, kNoFlags, params, &usedFile};
            const ReferenceFormat* answered = ReadByName(*format, call);
            return answered ? answered->name : nullptr;
        }
        if (IsPlainRasterExtension(wanted)) return nullptr;
        return TryOpeningForRead(file, reference, usedFile, width, height, mathType);
    });
    Tellurion::LibraryOnDemand::RequireAll();
    if (!kind) ThrowUnsupported(file, kReadSource);
    if (!HasReference(reference))
        throw BFileContentNotValidException(
            kReadSource,
            BString::Format("File <%ls> does not contain any valid referencing information.", file));
    return kind;
}

const char* BMapAnchor::TryOpeningForRead(const BString& file, BGeoReference& reference, BString& usedFile,
                                          long width, long height, EMathTransformType mathType) {
    return Guarded(kProbeLog, file, [&]() -> const char* {
        if (IsSettingsFile(file)) return nullptr;
        const ReadCall call{file, reference, width, height, mathType, kNoFlags, nullptr, &usedFile};
        for (const ReferenceFormat* format : ProbedFormats())
            if ((!format->probe.may_be || format->probe.may_be(file)) && format->probe.read(call))
                return format->name;
        return nullptr;
    });
}

void BMapAnchor::Save(const EReferenceType& type, const BString& file, const BGeoReference& reference,
                      long width, long height, const BString& imageName, unsigned int flags,
                      const BParamList* params) {
    RequireName(file, kSaveSource);
    // Numbers that are no type are let pass without a word; hosts rely on it.
    const ReferenceFormat* format = FindFormatByType(type);
    if (!format) return;
    if (!format->typed_save) ThrowUnsupported(file, kSaveSource);
    const GdalDrivers::Scope allowed(params);
    Guarded(kSaveLog, file, [&] {
        format->typed_save({file, reference, width, height, imageName, flags, params});
    });
}

void BMapAnchor::Save(const BString& file, const BGeoReference& reference, long width, long height,
                      const BString& imageName, const BParamList* params) {
    RequireName(file, kSaveSource);
    const BString extension = RequireExtension(file, kSaveSource);
    const bool saved = Guarded(kSaveLog, file, [&] {
        const ReferenceFormat* format = FindFormatToSave(extension.GetUnits());
        return format && format->named_save &&
               format->named_save({file, reference, width, height, imageName, kNoFlags, params});
    });
    if (!saved) ThrowUnsupported(file, kSaveSource);
}

BString BMapAnchor::GenerateWorldFileExt(const BString& file) {
    const BString extension = LowerExtension(file);
    constexpr std::size_t kDotAndThreeLetters = 4;
    BString stem = extension;
    if (extension.GetLength() == kDotAndThreeLetters) {
        stem = extension.Left(2) + extension.Right(1);
    } else if (extension == BString(".tiff")) {
        stem = ".tif";
    } else if (extension == BString(".jpeg")) {
        stem = ".jpg";
    }
    return stem += "w";
}

}  // namespace MapAnchor
