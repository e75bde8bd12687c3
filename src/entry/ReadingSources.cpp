#include "ReadingSources.h"

#include "ReadingOptionsState.h"

#include "ReadingSteps.h"
#include "ReferenceFormats.h"
#include "common/points/SourceDistance.h"
#include "common/policy/DiagnosticIds.h"
#include "raster/gdal/AuxiliaryReference.h"
#include "raster/geotiff/KnownRasters.h"
#include "raster/geotiff/StoreGdalReference.h"

#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BFileContentNotValidException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace MapAnchor {

using namespace Tellurion;
using ESeverity = BDiagnostic::ESeverity;

namespace {

constexpr unsigned int kNoFlags = 0;

const ReferenceFormat* RowNamed(std::string_view name) {
    for (const ReferenceFormat& row : ReferenceFormatTable())
        if (name == row.name) return &row;
    return nullptr;
}

void FailUnread(ReadingState& state) {
    state.failure = ReadingFailure::Of<BFileContentNotValidException>(
        BString::Format("File <%ls> does not contain any valid referencing information.", state.used_file));
}

void StoreGdal(const std::optional<GdalReference>& stated, const BReadingOptions& options,
               ReadingState& state) {
    state.kind = RowNamed("TIF");
    if (!stated || !StoreGdalReference(state.used_file, *stated, options.GetWidth(), options.GetHeight(),
                                       state.reference))
        FailUnread(state);
}

void ReadSystemFile(ReadingState& state) {
    BCoordSys* const system = BCoordSys::FromFile(state.used_file);
    if (!system) return FailUnread(state);
    state.reference.SetCoordSys(BSharedPtr<BCoordSys>(system));
    if (state.explains) state.origins.push_back({"system", state.used_file, LinePlace(1)});
}

/// A sidecar by the reader of its kind; the read by type where the other refuses tiny terms.
void ReadByRow(const char* kind, const BReadingOptions& options, ReadingState& state) {
    state.kind = RowNamed(kind);
    BString used;
    const ReadCall call{
        state.used_file,       state.reference, options.GetWidth(),         options.GetHeight(),
        options.GetMathType(), kNoFlags,        &options.GetState().params, &used};
    if (!state.kind->named_read) {
        state.by_name = false;
        return state.kind->typed_read(call);
    }
    if (state.kind->named_read(call)) return;
    state.reference.MathTransform = {};
    if (std::string_view(kind) == "WLD") {
        state.by_name = false;
        state.kind->typed_read(call);
    }
    if (!state.reference.HasMathTransform()) FailUnread(state);
}

/// The raster's own tags and points, without what is beside it.
void ReadRasterAlone(const BReadingOptions& options, ReadingState& state) {
    const BString extension = BFileUtilities::GetExtension(state.used_file).ToLower();
    const ReferenceFormat* const row = FindFormatToRead(extension.GetUnits());
    if (!row || std::string_view(row->name) == "TIF")
        return StoreGdal(ReadRaster(state.used_file, RasterKinds::All, Sidecars::Hidden), options, state);
    BString used;
    const BString kind =
        BReferenceFormats::Read(state.used_file, state.reference, used, options.GetWidth(),
                                options.GetHeight(), options.GetMathType(), &options.GetState().params);
    state.kind = RowNamed(kind.StdStr());
    state.used_file = used;
}

void ReadKind(const char* kind, const BReadingOptions& options, ReadingState& state) {
    const std::string_view name = kind;
    if (name == "internal") return ReadRasterAlone(options, state);
    if (name == "aux.xml") return StoreGdal(ReadAuxiliaryReference(state.used_file), options, state);
    if (name == "PRJ") return ReadSystemFile(state);
    ReadByRow(kind, options, state);
}

std::shared_ptr<ReferenceSourceState> ReadSource(const char* kind, const BString& file,
                                                 const BReadingOptions& options) {
    auto source = std::make_shared<ReferenceSourceState>(kind);
    ReadingState& state = *source->reading;
    state.file = state.used_file = file;
    state.explains = options.Explains();
    RunReader(state, [&] { ReadKind(kind, options, state); });
    if (state.failure) state.reference = BGeoReference();
    state.files.insert(state.files.begin(), state.used_file);
    return source;
}

/// What another reading states of where a value is written.
void TakeOrigins(const ReadingState& from, const char* value, ReadingState& to) {
    for (const BReading::Origin& origin : from.origins)
        if (origin.Value == BString(value)) to.origins.push_back(origin);
}

/// A prj of another spelling than the reader of world files looks for.
void AddPrj(SourceList& sources) {
    const auto prj = std::find_if(sources.begin(), sources.end(),
                                  [](const auto& source) { return std::string_view(source->kind) == "PRJ"; });
    if (prj == sources.end() || !(*prj)->HasSystem()) return;
    bool is_taken = false;
    for (auto& source : sources) {
        if (std::string_view(source->kind) != "WLD" || !source->HasPosition()) continue;
        ReadingState& state = *source->reading;
        if (!source->HasSystem()) {
            state.reference.SetCoordSys((*prj)->reading->reference.CoordSys);
            state.files.push_back((*prj)->reading->used_file);
            TakeOrigins(*(*prj)->reading, "system", state);
        }
        is_taken = true;
    }
    if (is_taken) sources.erase(prj);
}

std::string NamesOf(const ReadingState& state) {
    std::string names;
    for (const BString& file : state.files)
        names += (names.empty() ? "" : ", ") + BFileUtilities::GetFileName(file).StdStr();
    return names;
}

std::string OtherText(const ReferenceSourceState& source) {
    const std::string name = std::string_view(source.kind) == "internal"
                                 ? std::string("the raster's own tags")
                                 : NamesOf(*source.reading);
    if (source.reading->failure) return name + ", which cannot be read";
    if (std::isnan(source.pixels)) return name;
    return name + ", " + PrintFixed(source.pixels, 2) + " px away";
}

/// The text "read from a.jgw, a.prj; also there: a.tab, 0.50 px away".
void NoteSources(const SourceList& sources, ReadingState& state) {
    constexpr double kApart = 0.01;
    std::string others;
    bool differs = false;
    for (const auto& source : sources) {
        if (source->wins) continue;
        const bool took_part = std::find(state.files.begin(), state.files.end(),
                                         source->reading->used_file) != state.files.end() &&
                               std::string_view(source->kind) != "internal";
        if (took_part) continue;
        others += (others.empty() ? "; also there: " : ", ") + OtherText(*source);
        differs = differs || source->pixels > kApart;
    }
    if (state.files.size() < 2 && others.empty() && state.used_file == state.file) return;
    state.Add({.id = differs ? DiagnosticId::kSourcesDiffer : DiagnosticId::kReadFrom,
               .severity = ESeverity::Note,
               .text = "read from " + NamesOf(state) + others,
               .file = state.used_file});
}

/// The first system of another source for a winner that has none.
void BorrowSystem(const SourceList& sources, ReadingState& state) {
    if (state.reference.HasCoordSys()) return;
    for (const auto& source : sources) {
        if (!source->HasSystem()) continue;
        state.reference.SetCoordSys(source->reading->reference.CoordSys);
        TakeOrigins(*source->reading, "system", state);
        state.files.push_back(source->reading->files.back());  // a world file's system is in its prj
        return;
    }
}

void FailNothing(const SourceList& sources, const BReadingOptions& options, ReadingState& state) {
    if (!options.GetSource().IsEmpty()) {
        std::string names;
        for (const auto& source : sources)
            names += (names.empty() ? "" : ", ") + std::string(source->kind);
        state.failure = ReadingFailure::Of<BFileContentNotValidException>(
            BString::Format("File <%ls> has no source \"%ls\"; there are: %s.", state.file,
                            options.GetSource(), names.empty() ? std::string("none") : names));
        return;
    }
    state.failure = ReadingFailure::Of<BFileContentNotValidException>(BString::Format(
        "File <%ls> does not contain any valid referencing information, nor does a file beside it.",
        state.file));
}

ReferenceSourceState* Choose(SourceList& sources, const BReadingOptions& options) {
    const auto find = [&sources](auto matches) -> ReferenceSourceState* {
        const auto found = std::find_if(sources.begin(), sources.end(), matches);
        return found == sources.end() ? nullptr : found->get();
    };
    const BString wanted = options.GetSource();
    if (!wanted.IsEmpty())
        return find([&](const auto& source) { return source->IsNamed(wanted) && !source->reading->failure; });
    for (const auto matches :
         {+[](const std::shared_ptr<ReferenceSourceState>& source) { return source->wins_in_gdal; },
          +[](const std::shared_ptr<ReferenceSourceState>& source) { return source->HasPosition(); },
          +[](const std::shared_ptr<ReferenceSourceState>& source) { return source->HasSystem(); }})
        if (ReferenceSourceState* const found = find(matches)) return found;
    return nullptr;
}

}  // namespace

bool ReferenceSourceState::IsNamed(const BString& name) const {
    const BString wanted = BString(name).ToLower();
    if (BString(kind).ToLower() == wanted) return true;
    return std::any_of(reading->files.begin(), reading->files.end(), [&](const BString& file) {
        return file == name || BFileUtilities::GetFileName(file).ToLower() == wanted ||
               BFileUtilities::GetExtension(file).ToLower() == BString(".") + wanted;
    });
}

SourceList ReadSources(const BString& raster, const std::vector<SidecarName>& beside,
                       const BReadingOptions& options) {
    SourceList sources;
    const auto add = [&sources](std::shared_ptr<ReferenceSourceState> source) {
        if (source->HasPosition() || source->HasSystem()) sources.push_back(std::move(source));
    };
    for (const SidecarName& name : beside)
        if (std::string_view(name.kind) == "aux.xml") add(ReadSource(name.kind, name.file, options));
    add(ReadSource("internal", raster, options));
    for (const SidecarName& name : beside) {
        if (std::string_view(name.kind) == "aux.xml") continue;
        sources.push_back(ReadSource(name.kind, name.file, options));
    }
    AddPrj(sources);
    return sources;
}

void ReadAsGdal(const BString& raster, const BReadingOptions& options, ReadingState& state) {
    state.file = state.used_file = raster;
    state.explains = options.Explains();
    RunReader(state, [&] { StoreGdal(ReadRaster(raster, RasterKinds::All), options, state); });
}

void MeasureSources(SourceList& sources, const ReadingState& gdal, long width, long height) {
    constexpr double kSame = 0.75;  // of a pixel; world files turned by 45 degrees differ by 0.71
    ReferenceSourceState* nearest = nullptr;
    double least = kSame;
    for (auto& source : sources) {
        const std::string_view kind = source->kind;
        if (!source->HasPosition() || kind == "RSF" || kind == "ERS" || kind == "POINTS" || gdal.failure)
            continue;
        const PlacedRaster own{source->reading->reference, source->reading->IsCentreAnchored()};
        const double distance = DistanceBetween({gdal.reference}, own, width, height).pixels;
        const bool is_listed =
            kind == "internal" ||
            std::find(gdal.files.begin(), gdal.files.end(), source->reading->used_file) != gdal.files.end();
        if (is_listed && distance < least) {
            least = distance;
            nearest = source.get();
        }
    }
    if (nearest) nearest->wins_in_gdal = true;
}

void ReadFromWinner(SourceList& sources, const BReadingOptions& options, const ReadingState& gdal,
                    ReadingState& state) {
    ReferenceSourceState* const winner = Choose(sources, options);
    if (!winner) return FailNothing(sources, options, state);
    winner->wins = true;
    const ReadingState& read = *winner->reading;
    const PlacedRaster here{read.reference, read.IsCentreAnchored()};
    for (auto& source : sources) {
        const ReadingState& other = *source->reading;
        const auto distance =
            DistanceBetween(here, {other.reference, other.IsCentreAnchored()}, state.width, state.height);
        source->pixels = distance.pixels;
        source->metres = distance.metres;
    }
    // Together with the auxiliary file a raster may state more, such as a unit of heights.
    const std::string_view name = winner->kind;
    const bool is_whole = options.GetSource().IsEmpty() && !gdal.failure && read.kind == gdal.kind &&
                          (name == "internal" || name == "aux.xml") && winner->wins_in_gdal;
    state.reference = is_whole ? gdal.reference : read.reference;
    state.kind = read.kind;
    state.by_name = read.by_name;
    state.used_file = read.used_file;
    state.files.assign(read.files.begin(), read.files.end());
    state.origins = read.origins;
    state.exact_points = read.exact_points;
    if (name != "internal") TakeOrigins(gdal, "size", state);  // of the raster itself
    for (const BDiagnostic& remark : read.diagnostics)
        state.diagnostics.push_back(remark);
    BorrowSystem(sources, state);
    NoteSources(sources, state);
}

}  // namespace MapAnchor
