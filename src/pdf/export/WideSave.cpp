#include "export/WideSave.h"

#include "PdfParameters.h"
#include "export/AppendToFile.h"
#include "export/BExportGeoPDF.h"
#include "export/MovedAside.h"
#include "export/StructureExtension.h"
#include "export/TraitsOf.h"
#include "export/ViewportText.h"
#include "load/DictionaryText.h"
#include "load/IncrementalUpdate.h"
#include "load/PageSearch.h"
#include "load/PoDoFoSettings.h"
#include "wide/GradSystem.h"
#include "wide/WideDocument.h"

#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceNotSupportedException.h>
#include <MapAnchor/BGeoReferenceWriteException.h>
#include <MapAnchor/BReadParametersException.h>
#include <Tellurion/AffineTerms.h>
#include <Tellurion/BException.h>
#include <Tellurion/BFileNotFoundException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace MapAnchor {

using PoDoFo::PdfError;
using Tellurion::BCoordSys;
using Tellurion::BException;
using Tellurion::BGeoReference;
using Tellurion::BKeyValuePairs;
using Tellurion::BLogger;
using Tellurion::BString;
using VellumLib::CrossReferences;
using VellumLib::DictionaryText;
using VellumLib::FileWindow;
using VellumLib::IncrementalUpdate;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Write";
constexpr double kPointsPerInch = 72.0;

enum class EUpdate : int { Never = 0, Always = 1, WhereNeeded = 2 };

int Number(const BKeyValuePairs& params, const char* key, int otherwise) {
    return params.HasProperty(key) ? static_cast<int>(params.GetInteger(key, otherwise)) : otherwise;
}

/// What a save has to know of the page that it changes.
struct PageFacts {
    std::array<double, 2> origin{};
    double user_unit = 1.0;
};

/// A file that is open for an update: its cross-references and the page.
struct OpenFile {
    FileWindow file;
    CrossReferences references;
    std::optional<VellumLib::FoundPage> page;  ///< not of an encrypted file

    OpenFile(const BString& path, long number) : file(path.StdStr()), references(file) {
        if (!references.IsEncrypted()) page = VellumLib::FindPage(references, number - 1);
    }
};

/// Nothing for a file that our own reader does not read: it is for the parser.
std::unique_ptr<OpenFile> OpenForUpdate(const BString& path, long number) {
    try {
        return std::make_unique<OpenFile>(path, number);
    } catch (const PdfError&) {
        return nullptr;
    }
}

PageFacts FactsOf(const VellumLib::FoundPage& page, CrossReferences& references) {
    PageFacts facts;
    if (page.media) facts.origin = {(*page.media)[0], (*page.media)[1]};
    const PoDoFo::PdfObject unit = VellumLib::FollowedEntry(references, page.dictionary, "UserUnit");
    if ((unit.IsNumber() || unit.IsReal()) && unit.GetReal() > 0.0) facts.user_unit = unit.GetReal();
    return facts;
}

/// By the parser. An encrypted file, for one, is refused later and in other words.
PageFacts FactsByParser(const BString& path, long number) {
    PageFacts facts;
    try {
        const VellumLib::WideDocument document(path.StdStr(), number == 1);
        const VellumLib::WidePage page = document.Pages().Page(static_cast<std::size_t>(number - 1));
        if (page.media) facts.origin = {(*page.media)[0], (*page.media)[1]};
        facts.user_unit = page.user_unit;
    } catch (const PdfError&) {
    } catch (const std::exception&) {
    }
    return facts;
}

BString TextToWrite(const BCoordSys& system, const BKeyValuePairs& params) {
    constexpr unsigned char kNoFlags = 0;
    const BString text = SystemText(system, kNoFlags);
    if (!text.IsEmpty()) return text;
    const BString other = Number(params, PdfParameters::kWkt2, 0) != 0 ? system.ToWKT2() : BString();
    if (!other.IsEmpty()) return other;
    throw BGeoReferenceInvalidCoordSysException(
        kSource, BString::Format("ESRI's well-known text, which readers of PDF expect, cannot describe the "
                                 "coordinate system <%ls>; well-known text 2 is written only where it is "
                                 "asked for.",
                                 NameOf(system)));
}

[[noreturn]] void ThrowBadPoint(const char* what, double value) {
    throw BException("Could not generate Tie points", kSource, BString::Format(what, value));
}

/// Degrees become the unit of the system's geographic base, in which readers count. Longitudes
/// of a geographic system stay next to one another where the map crosses the antimeridian, and
/// reach beyond it on one side.
void PlaceOnGround(TiePoints& points, const BCoordSys& system, bool projected) {
    const bool grads = CountsInGrads(system);
    const double turn = grads ? 360.0 / kDegreesOfGrad : 360.0;
    if (grads && projected)
        for (auto& world : points.worlds) {
            world.x /= kDegreesOfGrad;
            world.y /= kDegreesOfGrad;
        }
    double west = points.worlds.front().x;
    double east = west;
    for (const auto& world : points.worlds) {
        if (std::fabs(world.y) > turn / 4.0 * (1.0 + 1e-9))
            ThrowBadPoint("The latitude %f of a control point is beyond the pole.", world.y);
        west = std::min(west, world.x);
        east = std::max(east, world.x);
    }
    if (std::max(std::fabs(west), std::fabs(east)) > 2.0 * turn || east - west > turn * (1.0 + 1e-9))
        ThrowBadPoint("The longitude %f of a control point is too far from Greenwich or from the others.",
                      east);
    const double shift = std::round((west + east) / 2.0 / turn) * turn;
    const bool crosses = west - shift < -turn / 2.0 || east - shift > turn / 2.0;
    for (auto& world : points.worlds) {
        const double turns = projected ? std::round(world.x / turn) * turn : shift;
        if (!projected || std::fabs(world.x) > turn / 2.0) world.x -= turns;
    }
    if (!projected && crosses)
        BLogger::Instance()->Write(Tellurion::ELogSeverity::Warning,
                                   "pdf-antimeridian: the map crosses the antimeridian; its longitudes are "
                                   "written beyond 180 degrees, which some readers do not expect");
}

/// A part of the page in points, from the lower left corner of the media box.
struct Frame {
    double left = 0.0, bottom = 0.0, right = 0.0, top = 0.0;
};

std::optional<Frame> FrameOf(const BKeyValuePairs& params) {
    if (!params.HasProperty(PdfParameters::kFrame)) return std::nullopt;
    const BString words = params.GetString(PdfParameters::kFrame, BString());
    const std::string text = words.StdStr();
    std::string_view rest = text;
    Frame frame;
    bool held = true;
    for (double* const number : {&frame.left, &frame.bottom, &frame.right, &frame.top})
        held = held && Tellurion::ScanDouble(rest, *number) && std::fabs(*number) <= kLongestEdge;
    constexpr double kLeast = 0.001;
    if (held && rest.find_first_not_of(' ') == std::string_view::npos && frame.right - frame.left >= kLeast &&
        frame.top - frame.bottom >= kLeast)
        return frame;
    throw BReadParametersException(BString::Format(
        "The frame <%ls> of the map is not four numbers, left, bottom, right and top, in points.", words));
}

/// The raster that is the frame alone, at a thousandth of a point.
constexpr double kFramePixel = 0.001;
long FramePixels(double points) {
    return std::lround(points / kFramePixel);
}

BGeoReference FramedReference(const BGeoReference& reference, const Frame& frame, long width, long height,
                              const BKeyValuePairs& params) {
    RequireReference(reference);
    const double scale = PointsPerPixel(&params);
    RequirePageSize(static_cast<double>(width) * scale, static_cast<double>(height) * scale);
    Tellurion::AffineTerms t;
    try {
        if (!reference.HasMathTransform()) throw BException("", kSource, "");
        reference.MathTransform->GetAffineParameters(t.a, t.b, t.c, t.d, t.e, t.f);
    } catch (const BException&) {
        throw Tellurion::BException("Could not generate Tie points", kSource,
                                    "A frame on the page needs an affine transform.");
    }
    const double column = frame.left / scale;
    const double row = static_cast<double>(height) - frame.top / scale;
    const double step = kFramePixel / scale;
    BGeoReference framed = reference;
    framed.PointPairVector.clear();
    const std::unique_ptr<Tellurion::BMathTransform> transform(Tellurion::BMathTransform::CreateAffine(
        t.a * step, t.b * step, t.a * column + t.b * row + t.c, t.d * step, t.e * step,
        t.d * column + t.e * row + t.f, true));
    if (!transform)
        throw Tellurion::BException("Could not generate Tie points", kSource,
                                    "The transform of the reference has no inverse.");
    framed.SetMathTransform(*transform);
    return framed;
}

MapToWrite MapOf(const BGeoReference& reference, long width, long height, const BKeyValuePairs& params) {
    RequireReference(reference);
    const double scale = PointsPerPixel(&params);
    MapToWrite map;
    map.width = static_cast<double>(width) * scale;
    map.height = static_cast<double>(height) * scale;
    RequirePageSize(map.width, map.height);
    const BCoordSys& system = *reference.CoordSys;
    map.system_text = TextToWrite(system, params);
    map.system_code = SystemCode(system);
    map.system_name = NameOf(system);
    map.unit_name = UnitNameOf(system);
    map.projected = system.GetKind() == BCoordSys::kKindProjected;
    // A system that is derived from another geographic one has positions of its own.
    const bool to_geodetic = map.projected || system.ToPRJ().IsEmpty();
    if (!CollectTiePoints(reference, to_geodetic, scale, width, height, map.points))
        throw BException("Could not generate Tie points", kSource,
                         map.points.pixels.empty() && reference.HasMathTransform()
                             ? "The raster's corners have no longitude and latitude, or the raster is too "
                               "small to distinguish them."
                             : "A PDF needs a transform, or four control points that are enabled.");
    PlaceOnGround(map.points, system, map.projected);
    return map;
}

/// The map of the frame, or of the whole raster.
MapToWrite MapOfFrame(const BGeoReference& reference, long width, long height, const BKeyValuePairs& params) {
    const std::optional<Frame> frame = FrameOf(params);
    if (!frame) return MapOf(reference, width, height, params);
    const BGeoReference framed = FramedReference(reference, *frame, width, height, params);
    Tellurion::BParamList of_frame;
    of_frame.SetDouble(PdfParameters::kResolution, kPointsPerInch / kFramePixel);
    of_frame.SetInteger(PdfParameters::kWkt2, Number(params, PdfParameters::kWkt2, 0));
    MapToWrite map = MapOf(framed, FramePixels(frame->right - frame->left),
                           FramePixels(frame->top - frame->bottom), of_frame);
    map.origin = {frame->left, frame->bottom};
    // The points are at their places below the frame's own top, which no whole number of pixels reaches.
    map.width = frame->right - frame->left;
    map.height = frame->top - frame->bottom;
    return map;
}

/// From points of 1/72 inch to the units of the page.
void FitToPage(MapToWrite& map, const PageFacts& page) {
    for (std::size_t i = 0; i < map.origin.size(); ++i)
        map.origin[i] = page.origin[i] + map.origin[i] / page.user_unit;
    map.width /= page.user_unit;
    map.height /= page.user_unit;
    for (auto& pixel : map.points.pixels) {
        pixel.x /= page.user_unit;
        pixel.y /= page.user_unit;
    }
}

/// The page's viewports as they are in the file, and one more.
std::string WithOneMore(OpenFile& open, std::string viewports, const std::string& added) {
    const PoDoFo::PdfObject* const entry = open.page->dictionary.GetKey("VP");
    if (entry && entry->IsReference()) viewports = open.references.TextOf(entry->GetReference());
    try {
        return VellumLib::ArrayTextWith(viewports.empty() ? "[ ]" : viewports, added);
    } catch (const PdfError&) {
        throw BGeoReferenceNotSupportedException(
            kSource, "The viewports of the page are not an array; save without adding a map.");
    }
}

void RequireRoomForMore(const DictionaryText& page) {
    if (!page.Value("LGIDict").empty())
        throw BGeoReferenceNotSupportedException(
            kSource,
            "The page has an LGIDict, beside which readers see no other map; save without adding one.");
}

std::string TailOf(OpenFile& open, const MapToWrite& map, bool adds) {
    IncrementalUpdate update(open.references, open.file);
    const auto measure = update.NewObject();
    const auto system = update.NewObject();
    DictionaryText page(open.references.TextOf(open.page->reference));
    if (adds) RequireRoomForMore(page);
    page.Remove("LGIDict");
    page.Set("VP", adds ? WithOneMore(open, page.Value("VP"), ViewportText(map, measure))
                        : "[ " + ViewportText(map, measure) + " ]");
    update.Put(open.page->reference, page.Text());
    update.Put(measure, MeasureText(map, system));
    update.Put(system, SystemText(map));
    if (AllowsNewRoles(open.references))
        ExtendStructure(update, open.references, open.file, open.page->reference, map.system_name, adds);
    return update.Tail();
}

void Log(const std::vector<BDiagnostic>& remarks) {
    for (const BDiagnostic& remark : remarks)
        BLogger::Instance()->Write(Tellurion::ELogSeverity::Warning,
                                   remark.GetId() + BString(": ") + remark.GetText());
}

void WriteWhole(const BString& file, const MapToWrite& map, long number, bool extends_structure) {
    MovedAside original(file);
    BExportGeoPDF out;
    out.SetSourcePath(original.Name());
    out.SetDestinationPath(original.Destination());
    out.SetWorkPath(original.WorkName());
    out.SetPageSize(map.width, map.height);
    out.SetMapName(map.name);
    out.SetOrigin(map.origin[0], map.origin[1]);
    out.SetPageIndex(static_cast<int>(number - 1));
    out.SetSparesDocument(true);
    out.SetExtendsStructure(extends_structure);
    out.SetKeepsLongitudes(true);
    out.SetCoordSysTexts(&map.system_text, &map.system_code);
    out.SetCoordSysName(map.system_name);
    out.SetUnitName(map.unit_name);
    for (std::size_t i = 0; i < map.points.pixels.size(); ++i)
        out.AddTiePoint(map.points.pixels[i], map.points.worlds[i]);
    try {
        if (!out.Export())
            throw BGeoReferenceWriteException(
                kSource, BString::Format("File <%ls> could not be georeferenced.", file));
    } catch (...) {
        original.Restore();
        throw;
    }
    original.ReplaceByResult();
}

void RequireUpdatable(const BString& file, const OpenFile* open) {
    if (open && open->page) return;
    throw BGeoReferenceNotSupportedException(
        kSource,
        open
            ? BString::Format("File <%ls> is encrypted; it can be georeferenced without a password alone.",
                              file)
            : BString::Format("File <%ls> cannot be updated: its cross-references or the way to the page "
                              "are damaged, or there is no such page. Save it without an incremental update.",
                              file));
}

}  // namespace

bool IsWideSave(const BKeyValuePairs* params) {
    if (!params) return false;
    for (const char* key : {PdfParameters::kWide, PdfParameters::kIncremental, PdfParameters::kAdd})
        if (Number(*params, key, 0) != 0) return true;
    return params->HasProperty(PdfParameters::kFrame);
}

void SaveWide(const BString& file, const BGeoReference& reference, long width, long height,
              const BKeyValuePairs& params) {
    if (!Tellurion::BFileUtilities::Exists(file))
        throw Tellurion::BFileNotFoundException(kSource, BString::Format("File <%ls> does NOT exist.", file));
    const VellumLib::PoDoFoSettings settings;
    const long number = Number(params, PdfParameters::kPage, 1);
    if (number < 1) throw BReadParametersException(BString::Format("A PDF has no page %ld.", number));
    MapToWrite map = MapOfFrame(reference, width, height, params);
    if (params.HasProperty(PdfParameters::kMapName))
        map.name = params.GetString(PdfParameters::kMapName, BString());
    const bool adds = Number(params, PdfParameters::kAdd, 0) != 0;
    const auto wish =
        adds ? EUpdate::Always : static_cast<EUpdate>(Number(params, PdfParameters::kIncremental, 0));
    const std::unique_ptr<OpenFile> open = OpenForUpdate(file, number);
    if (wish == EUpdate::Always) RequireUpdatable(file, open.get());
    const bool can_update = open && open->page;
    FitToPage(map, can_update ? FactsOf(*open->page, open->references) : FactsByParser(file, number));
    const BGeoPDFTraits traits = open ? TraitsOf(open->references, open->file) : BGeoPDFTraits();
    Log(traits.ChangeRemarks());
    if (can_update && (wish == EUpdate::Always || (wish != EUpdate::Never && traits.WantsUpdate())))
        return AppendToFile(file, static_cast<std::uint64_t>(open->file.Size()), TailOf(*open, map, adds));
    Log(traits.RewriteLosses());
    WriteWhole(file, map, number, !open || AllowsNewRoles(open->references));
}

}  // namespace MapAnchor
