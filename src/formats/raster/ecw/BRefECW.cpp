#include "raster/ecw/BRefECW.h"

#include "common/policy/ReferenceFormat.h"
#include "raster/jp2/HeaderReaders.h"

#include "common/files/InputFile.h"
#include "common/policy/Strictness.h"
#include "common/storing/StoreTransform.h"
#include "lookups/CoordSysLookups.h"
#include "raster/ecw/EcwKit.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <MapAnchor/BGeoReferenceNotSupportedException.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/ReferenceTags.h>

#include <cmath>
#include <memory>
#include <string>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BException;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BMathTransform;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::ELogSeverity;

namespace {

constexpr const char* kSource = "BRefECW::Read";
/// A text that hosts know, spelling included.
constexpr const char* kWriteSource = "BrefECW::Write";
constexpr const char* kWriteRefusal = "ECW raster image files canot be writen using this method.";

const BString kRaw("RAW");
const BString kGeodetic("GEODETIC");

constexpr FailureTexts kTexts = {
    .source = kSource, .affine_line = "BRefECW::Read Failure setting the BMathTransform ERROR (%ls)"};

/// An open view of the kit. Unless it is closed in the normal way, it is closed in the
/// way of failures at the end.
class EcwView {
public:
    explicit EcwView(const BString& file) {
        std::string name = file.StdStr();
        if (NCScbmOpenFileView(name.data(), &view_, nullptr) != 0) view_ = nullptr;
    }
    ~EcwView() {
        if (view_) NCScbmCloseFileView(view_);
    }
    EcwView(const EcwView&) = delete;
    EcwView& operator=(const EcwView&) = delete;

    bool IsOpen() const { return view_ != nullptr; }
    /// Null when the kit cannot tell.
    const NCSFileViewFileInfoEx* Info() const {
        NCSFileViewFileInfoEx* info = nullptr;
        return NCScbmGetViewFileInfoEx(view_, &info) == 0 ? info : nullptr;
    }
    bool Close() {
        constexpr bool kFreeCache = true;
        if (NCScbmCloseFileViewEx(view_, kFreeCache) != 0) return false;
        view_ = nullptr;
        return true;
    }

private:
    NCSFileView* view_ = nullptr;
};

/// Rows go south, whatever sign the file gives their step.
AffineTerms TermsOf(const NCSFileViewFileInfoEx& info) {
    return {info.fCellIncrementX, 0.0, info.fOriginX, 0.0, -std::fabs(info.fCellIncrementY), info.fOriginY};
}

bool IsGeoreferenced(const NCSFileViewFileInfoEx* info) {
    return NCSIsFileInfoExGeoreferenced(const_cast<NCSFileViewFileInfoEx*>(info));
}

/// The names of a system, ready for the look-up.
struct SystemNames {
    BString projection;
    BString datum;
    bool Any() const { return IsName(projection) || IsName(datum); }

    static bool IsName(const BString& name) { return !name.IsEmpty() && name != kRaw; }
};

/// A file that repeats the datum as its projection is geographic.
SystemNames NamesOf(const NCSFileViewFileInfoEx& info) {
    SystemNames names{BString(info.szProjection), BString(info.szDatum)};
    names.projection.Trim();
    names.datum.Trim();
    const bool geodetic = !SystemNames::IsName(names.projection) || names.projection == names.datum;
    if (names.Any() && geodetic) names.projection = kGeodetic;
    return names;
}

/// False when the file names a system that is not found.
bool StoreSystem(const NCSFileViewFileInfoEx& info, BGeoReference& reference) {
    const SystemNames names = NamesOf(info);
    if (!names.Any()) return true;
    const int units = static_cast<int>(info.eCellSizeUnits);
    const BSharedPtr<BCoordSys> system = FindERMapperCoordSys(names.projection, names.datum, units);
    if (system) reference.SetCoordSys(system);
    return static_cast<bool>(system);
}

void StoreSystem(const NCSFileViewFileInfoEx& info, OnFailure on_failure, BGeoReference& reference) {
    BString failure;
    try {
        if (!StoreSystem(info, reference)) failure = "Failed to get the coordinate system.";
    } catch (const BException& error) {
        failure = error.GetDetailedMessage();
        BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                       "BRefECW::Read Failure setting the BCoordSys ERROR (%ls)", failure);
    }
    if (!failure.IsEmpty() && on_failure == OnFailure::Throw)
        throw BGeoReferenceInvalidCoordSysException(kSource, failure);
}

void RequireIncrements(const BString& file, const NCSFileViewFileInfoEx& info) {
    if (info.fCellIncrementX != 0.0 && info.fCellIncrementY != 0.0) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                   "BRefECW::Read Failure CellIncrementX and/or CellIncrementY is zero!");
    throw BGeoReferenceInvalidReferenceFileException(
        kSource,
        BString::Format("File <%ls> is an invalid ECW file.  CellIncrementX and/or CellIncrementY is zero",
                        file));
}

void Store(const BString& file, const NCSFileViewFileInfoEx& info, Strictness strictness,
           BGeoReference& reference) {
    RequireIncrements(file, info);
    AffineTerms shown = TermsOf(info);
    shown.e = info.fCellIncrementY;
    StoreAffine(reference, TermsOf(info), strictness.Transform(), kTexts, &shown);
    StoreSystem(info, strictness.CoordSys(), reference);
}

/// Without a word on terms that make no transform; a failure ends the rest as well.
void StoreTolerantly(const NCSFileViewFileInfoEx& info, BGeoReference& reference) {
    constexpr bool kOptimizeFor2D = true;
    const AffineTerms t = TermsOf(info);
    try {
        const std::unique_ptr<BMathTransform> transform(
            BMathTransform::CreateAffine(t.a, t.b, t.c, t.d, t.e, t.f, kOptimizeFor2D));
        if (transform) reference.SetMathTransform(*transform);
        StoreSystem(info, reference);
    } catch (const BException& error) {
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error, "BRefECW::Read Failure setting the BMathTransform or BCoordSys ERROR (%ls)",
            error.GetDetailedMessage());
    }
}

}  // namespace

bool BRefECW::Read(const BString& file, BGeoReference& reference) {
    EcwView view(file);
    if (!view.IsOpen()) return false;
    const NCSFileViewFileInfoEx* const info = view.Info();
    if (!info) return false;
    const bool georeferenced = IsGeoreferenced(info);
    if (georeferenced) StoreTolerantly(*info, reference);
    return view.Close() && georeferenced;
}

void BRefECW::Read(const BString& file, const unsigned int& flags, BGeoReference& reference) {
    EcwView view(file);
    if (!view.IsOpen()) ThrowUnreadable(kSource, file);
    const NCSFileViewFileInfoEx* const info = view.Info();
    if (!info) throw BGeoReferenceInvalidReferenceFileException(kSource, "Could not read ViewFileInfo.");
    if (IsGeoreferenced(info)) Store(file, *info, Strictness(flags), reference);
    if (!view.Close()) throw BGeoReferenceInvalidReferenceFileException(kSource, "Could not close FileView.");
}

void BRefECW::Write(const BString&, const BGeoReference&) {
    throw BGeoReferenceNotSupportedException(kWriteSource, kWriteRefusal);
}

void BRefECW::Write(const BString&, const unsigned int&, const BGeoReference&) {
    throw BGeoReferenceNotSupportedException(kWriteSource, kWriteRefusal);
}

ReferenceFormat BRefECW::Format() {
    return {.name = "ECW",
            .title = "ECW",
            .type = Tellurion::EReferenceType::ECW,
            .typed_read = [](const ReadCall& call) { Read(call.file, call.flags, call.reference); },
            .typed_save = [](const SaveCall& call) { Write(call.file, call.flags, call.reference); },
            .named_read = [](const ReadCall& call) { return Read(call.file, call.reference); },
            .refuses_save = true,
            .served_by = HeaderReaders::Ecw(),
            .read_extensions = {Tellurion::REFERENCE_ECW_TAG.GetUnits()}};
}

/// The ECW reader states the corner of the first pixel, so that is this kind's anchor;
/// what only the MrSID reader can read, such as a rotated image, starts at its centre
/// and is named as of that kind.
ReferenceFormat BRefECW::Jpeg2000Format() {
    return {.name = "JP2",
            .title = "JPEG 2000",
            .type = Tellurion::EReferenceType::Reserved,
            .named_read = [](const ReadCall& call) { return Read(call.file, call.reference); },
            .second_reader = "SID",
            .served_by = HeaderReaders::Jpeg2000(),
            .missing = HeaderReaders::MissingForJpeg2000,
            .read_extensions = {Tellurion::REFERENCE_JP2_TAG.GetUnits()}};
}

}  // namespace MapAnchor
