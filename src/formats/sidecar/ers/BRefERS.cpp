#include "sidecar/ers/BRefERS.h"

#include "common/files/InputFile.h"
#include "common/files/OutputFile.h"
#include "common/policy/DiagnosticIds.h"
#include "common/policy/ReadNotes.h"
#include "common/policy/ReferenceFormat.h"
#include "common/storing/FindCoordSys.h"
#include "common/storing/StoreTransform.h"
#include "lookups/CoordSysLookups.h"
#include "sidecar/ers/ErsHeader.h"

#include <GeoCalc/CCoordSys.h>
#include <GeoCalc/CDataSource.h>
#include <GeoCalc/CHorizontalDatum.h>
#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/BUnit.h>
#include <Tellurion/ReferenceTags.h>

#include <array>
#include <cmath>
#include <ctime>
#include <optional>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BException;
using Tellurion::BFile;
using Tellurion::BFileUtilities;
using Tellurion::BGeoReference;
using Tellurion::BIdentifier;
using Tellurion::BLogger;
using Tellurion::BParamList;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::EFileMode;
using Tellurion::ELogSeverity;

namespace {

constexpr const char* kReadSource = "BRefERS::Read";
constexpr FailureTexts kWriteTexts = {.source = "BRefERS::Write", .file_kind = "ERS"};
constexpr const char* kErMapper = "ERMapper";
constexpr const char* kRaw = "RAW";

constexpr FailureTexts kReadTexts = {
    .source = kReadSource, .affine_line = "BRefERS::Read Failure setting the BMathTransform ERROR (%ls)"};

bool IsNone(const BString& name) {
    return name.IsEmpty() || name == BString(kRaw);
}

bool NamesSystem(const ErsHeader& header) {
    return !IsNone(header.projection) || !IsNone(header.datum);
}

BSharedPtr<BCoordSys> LookUpSystem(const BString& projection, const BString& datum) {
    constexpr int kNoChangeOfUnit = 4;
    const bool geodetic = IsNone(projection) || projection == datum;
    return FindERMapperCoordSys(geodetic ? BString("GEODETIC") : projection, datum, kNoChangeOfUnit);
}
BSharedPtr<BCoordSys> LookUpSystem(const ErsHeader& header) {
    return LookUpSystem(header.projection, header.datum);
}

BSharedPtr<BCoordSys> FindSystem(const ErsHeader& header, OnFailure on_failure) {
    const auto log_line = [](const BString& message) {
        // The line has always named the class so.
        return BString::Format("BRefRS::Read Failure setting the BCoordSys ERROR (%ls)", message);
    };
    const auto nothing_found = [] { return BString("Failed to get the coordinate system."); };
    return FindCoordSys([&] { return LookUpSystem(header); }, on_failure,
                        {kReadSource, kReadSource, log_line, nothing_found});
}

double UnitsPerMetre(const BCoordSys& system) {
    const auto unit = system.GetUnits();
    return unit ? unit->GetUnitsPerBase() : 1.0;
}

/// Takes the system, and its unit for the dimensions; without one they are what
/// they are.
AffineTerms SetSystem(BGeoReference& reference, const BSharedPtr<BCoordSys>& system,
                      const ErsHeader& header) {
    if (system) reference.SetCoordSys(system);
    return header.HasTerms() ? header.ToAffine(system ? UnitsPerMetre(*system) : 1.0) : AffineTerms();
}

void NoteOrigins(const BString& file, const ErsHeader& header, bool has_system) {
    ReadNotes* const notes = ReadNotes::Explaining();
    if (!notes) return;
    const auto add = [&](const char* value, const std::vector<const char*>& tags) {
        std::string place;
        for (const char* tag : tags)
            if (const long line = header.LineOf(tag))
                place += (place.empty() ? "" : ", ") + LinePlace(line) + " (" + tag + ")";
        notes->AddOrigin(value, file, place);
    };
    add("size", {"NrOfCellsPerLine", "NrOfLines"});
    if (has_system) add("system", {"Datum", "Projection"});
    if (!header.HasTerms()) return;
    add("pixel size", {"Xdimension", "Ydimension"});
    add("position", {"Eastings", "Northings", "RegistrationCellX", "RegistrationCellY"});
}

/// What a host would not notice of the header's names and its rotation.
void NoteNames(const BString& file, const ErsHeader& header, const BSharedPtr<BCoordSys>& system) {
    ReadNotes* const notes = ReadNotes::Current();
    if (!notes) return;
    notes->SetStatedSize(static_cast<long>(header.columns), static_cast<long>(header.rows));
    if (header.rotation.GetUnits().find_first_of(u"123456789") != std::u16string::npos)
        notes->Add({.id = DiagnosticId::kRotationNotRead,
                    .text = "the rotation " + header.rotation.StdStr() + " of the header is not read",
                    .file = file,
                    .place = "Rotation"});
    if (!NamesSystem(header)) return;
    const std::string names = BString::Format("\"%ls\", \"%ls\"", header.projection, header.datum).StdStr();
    if (!system) {
        notes->Add({.id = DiagnosticId::kSystemUnknown,
                    .text = "the system of the projection and datum " + names + " is unknown",
                    .file = file,
                    .place = "CoordinateSpace"});
        return;
    }
    constexpr double kMetre = 1e-9;
    const bool in_degrees = system->GetKind() == BCoordSys::kKindGeodetic;
    if (!in_degrees && std::fabs(UnitsPerMetre(*system) - 1.0) > kMetre)
        notes->Add({.id = DiagnosticId::kUnitsMixed,
                    .text = "the pixel size is taken for metres and the position for " +
                            system->GetUnits()->GetName().StdStr() +
                            "; a header with both in one unit puts the raster elsewhere",
                    .file = file,
                    .place = "Xdimension"});
    if (IsNone(header.datum) || LookUpSystem("GEODETIC", header.datum)) return;
    notes->Add(
        {.id = DiagnosticId::kSystemReplaced,
         .text = BString::Format("the datum \"%ls\" is unknown; the projection's own takes its place: %ls",
                                 header.datum, system->GetName()),
         .file = file,
         .place = "Datum"});
}

[[noreturn]] void ThrowInvalid(const BString& detail) {
    throw BGeoReferenceInvalidReferenceFileException(kReadSource, detail);
}

void RequireTags(const ErsHeader& header) {
    constexpr const char* kFailed = "Could not read the \"%s\" tag.";
    // A tag without its name comes before the one where reading stopped.
    if (header.empty_tag) ThrowInvalid(BString::Format(kFailed, header.empty_tag));
    if (header.faulty_tag) ThrowInvalid(BString::Format(kFailed, header.faulty_tag));
    if (!header.has_raster_info_end) ThrowInvalid(BString::Format(kFailed, "RasterInfo End"));
}

void RequireTerms(const ErsHeader& header) {
    if (!header.HasTerms())
        throw BGeoReferenceInvalidTransformException(
            kReadSource,
            "Missing one or more of the required parameters needed to "
            "generate a transform.");
}

void RequireExtent(const BString& file, const AffineTerms& terms) {
    if (terms.a != 0.0 && terms.e != 0.0) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                   "BRefERS::Read Failure XDimension and/or YDimention is zero!");
    ThrowInvalid(
        BString::Format("File <%ls> is an invalid ERS file.  XDimension "
                        "and / or YDimention is zero",
                        file));
}

std::optional<std::string> TimeStamp() {
    constexpr int kLimit = 255;
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    std::array<char, kLimit + 1> stamp{};
    if (!gmtime_r(&now, &utc) || !FormatERSTimeStamp(&utc, stamp.data(), kLimit)) return std::nullopt;
    return std::string(stamp.data());
}

/// Zeros for a reference without a transform.
AffineTerms TermsOf(const BGeoReference& reference) {
    AffineTerms t;
    if (reference.HasMathTransform())
        reference.MathTransform->GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    return t;
}

bool IsRotated(const AffineTerms& terms) {
    constexpr double kNoRotation = 1e-7;
    return !(std::fabs(terms.b) < kNoRotation) || !(std::fabs(terms.d) < kNoRotation);
}

struct Names {
    BString projection;
    BString datum;
};

/// Whether the names are read back as another system than that of the EPSG code. Names
/// that the database does not have are the host's own.
bool MeanAnother(const Names& names, const BString& code) {
    const BSharedPtr<BCoordSys> read = LookUpSystem(names.projection, names.datum);
    return read && read->ToEPSGCode() != code;
}

/// Whether only names that are read back as the same place may be written, and codes in
/// place of others.
bool AsksForCodes(const BParamList* params) {
    static const BString kKey(BRefERS::kCodesKey);
    return params && params->HasProperty(kKey) && params->GetInteger(kKey, 0) != 0;
}

/// Both or none. Without a datum the projection is read on the one of its own.
Names NamesByName(const BGeoReference& reference, bool same_place) {
    if (!reference.HasCoordSys() || !reference.CoordSys->IsValid()) return {};
    BIdentifier projection;
    BIdentifier datum;
    // A system with a name of its own goes without: hosts know it so.
    if (reference.CoordSys->GetIdentifier(kErMapper, projection)) return {};
    if (!GetERMapperProjectionName(projection.Code, reference.CoordSys) || projection.Code.IsEmpty())
        return {};
    if (!reference.CoordSys->GetDatumIdentifier(kErMapper, datum)) datum.Code = kRaw;
    if (datum.Code.IsEmpty()) return {};
    if (same_place && datum.Code == BString(kRaw) &&
        !GeoCalc::DB::CDataSource::Instance().IsERMapperNameFor(projection.Code,
                                                                *reference.CoordSys->GetGCCoordSys()))
        return {};
    return {projection.Code, datum.Code};
}

[[noreturn]] void ThrowNoCode(const BString& file, const char* of, const BString& name) {
    throw BGeoReferenceInvalidCoordSysException(
        kWriteTexts.source,
        BString::Format("Can't write ERS file <%ls>, Can't find an ERMapper code for %s %ls.", file, of,
                        name));
}

/// One by one: a projection may go without its datum. Where codes are asked for, an EPSG
/// system that lacks a name has its code for both.
Names NamesByType(const BString& file, const BGeoReference& reference, OnFailure on_failure, bool codes) {
    if (!reference.HasCoordSys()) return {};
    GeoCalc::CS::CCoordSys& object = *reference.CoordSys->GetGCCoordSys();
    const GeoCalc::CS::CHorizontalDatum* datum = object.GetHorizontalDatum();
    const bool found = datum && datum->GetIdentifiers().Exists(kErMapper);
    BIdentifier projection;
    reference.CoordSys->GetIdentifier(kErMapper, projection);
    const Names names = {projection.Code, found ? datum->GetIdentifiers().GetCode(kErMapper) : BString()};
    const BString code = codes ? reference.CoordSys->ToEPSGCode() : BString();
    if (!code.IsEmpty() && (names.projection.IsEmpty() || !found || MeanAnother(names, code)))
        return {code, code};
    if (names.projection.IsEmpty()) {
        if (on_failure == OnFailure::Throw) ThrowNoCode(file, "Projection", object.GetName());
        return {};
    }
    if (!found && on_failure == OnFailure::Throw)
        ThrowNoCode(file, "Datum", datum ? datum->GetName() : BString());
    return names;
}

/// What a save is asked to write.
struct Order {
    const BString& file;
    const BGeoReference& reference;
    long width;
    long height;
    const BString& image_name;
};

BString HeaderText(const Order& order, const std::string& stamp, const AffineTerms& terms,
                   const Names& names) {
    const BGeoReference& reference = order.reference;
    const bool placed = reference.HasCoordSys() && reference.CoordSys->IsValid();
    return FormatErs({.name = BFileUtilities::GetFileName(order.file),
                      .time_stamp = stamp,
                      .image_name = BFileUtilities::GetFileName(order.image_name),
                      .datum = names.datum,
                      .projection = names.projection,
                      .terms = terms,
                      .units_per_metre = placed ? UnitsPerMetre(*reference.CoordSys) : 1.0,
                      .width = order.width,
                      .height = order.height});
}

}  // namespace

bool BRefERS::Read(const BString& file, BGeoReference& reference) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) return false;
    const ErsHeader header = ParseErs(in);
    in.Close();
    if (!header.has_raster_info_end) return false;
    const auto system = NamesSystem(header) ? LookUpSystem(header) : BSharedPtr<BCoordSys>();
    NoteNames(file, header, system);
    NoteOrigins(file, header, !system.IsEmpty());
    const AffineTerms terms = SetSystem(reference, system, header);
    if (header.HasTerms()) StoreAffine(reference, terms, OnFailure::GoOn, kReadTexts);
    return true;
}

void BRefERS::Read(const BString& file, const unsigned int& flags, BGeoReference& reference) {
    BFile in(file);
    if (!in.Open(EFileMode::Read, EFileMode::Text)) ThrowUnreadable(kReadSource, file);
    const ErsHeader header = ParseErs(in);
    in.Close();
    RequireTags(header);
    const Strictness strictness(flags);
    const auto system =
        NamesSystem(header) ? FindSystem(header, strictness.CoordSys()) : BSharedPtr<BCoordSys>();
    const AffineTerms terms = SetSystem(reference, system, header);
    RequireTerms(header);
    RequireExtent(file, terms);
    StoreAffine(reference, terms, strictness.Transform(), kReadTexts);
    NoteOrigins(file, header, !system.IsEmpty());
}

bool BRefERS::Write(const BString& file, const BGeoReference& reference, long width, long height,
                    const BString& imageName, const BParamList* params) {
    const auto stamp = TimeStamp();
    if (!stamp) return false;
    const AffineTerms terms = TermsOf(reference);
    if (IsRotated(terms))
        throw BGeoReferenceWriteException(kWriteTexts.source,
                                          "ERS referencing format does not support rotation.");
    OutputFile out(file, kWriteTexts);
    out.OpenOrThrow("ERS write could not open file");
    return out.Save([&] {
        try {
            out.Write(HeaderText({file, reference, width, height, imageName}, *stamp, terms,
                                 NamesByName(reference, AsksForCodes(params))));
            return true;
        } catch (const BException& error) {
            BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                           "BRefERS::Write Couldn't ERS <%ls>.  Error (%ls)", file,
                                           error.GetDetailedMessage());
            return false;
        }
    });
}

void BRefERS::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference,
                    long width, long height, const BString& imageName, const BParamList* params) {
    OutputFile out(file, kWriteTexts);
    if (!out.Open())
        throw Tellurion::BFileAccessException(
            kWriteTexts.source,
            BString::Format("Could not open the reference file <%ls> for writing.", file));
    out.Save([&] {
        const auto stamp = TimeStamp();
        if (!stamp)
            throw BGeoReferenceWriteException(kWriteTexts.source, "Can't generate a valid ERS time stamp");
        const AffineTerms terms = TermsOf(reference);
        if (IsRotated(terms))
            throw BGeoReferenceInvalidTransformException(
                kWriteTexts.source,
                BString::Format("Can't write ERS file <%ls>, ERS referencing format does not "
                                "support rotation in X (%f) or Y (%f).",
                                file, terms.b, terms.d));
        const Names names = NamesByType(file, reference, Strictness(flags).CoordSys(), AsksForCodes(params));
        out.Write(HeaderText({file, reference, width, height, imageName}, *stamp, terms, names));
        return true;
    });
}

ReferenceFormat BRefERS::Format() {
    return {.name = "ERS",
            .title = "ER Mapper header",
            .type = Tellurion::EReferenceType::ERS,
            .typed_read = [](const ReadCall& call) { Read(call.file, call.flags, call.reference); },
            .typed_save =
                [](const SaveCall& call) {
                    Write(call.file, call.flags, call.reference, call.width, call.height, call.image_name,
                          call.params);
                },
            .named_read = [](const ReadCall& call) { return Read(call.file, call.reference); },
            .named_save =
                [](const SaveCall& call) {
                    return Write(call.file, call.reference, call.width, call.height, call.image_name,
                                 call.params);
                },
            .read_extensions = {Tellurion::REFERENCE_ERS_TAG.GetUnits()},
            .save_extensions = {Tellurion::REFERENCE_ERS_TAG.GetUnits()},
            .sidecar = true,
            .coord_sys = Keeps::Always,
            .datum_shift = true,
            .decimals = 12,
            .scale_decimals = 18,
            .own_system_names = true,
            .states_size = true,
            .names_image = true};
}

}  // namespace MapAnchor
