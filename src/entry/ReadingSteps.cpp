#include "ReadingSteps.h"

#include "PdfRemarks.h"
#include "ReadingOptionsState.h"
#include "ReadingSources.h"
#include "ReferenceFormats.h"
#include "SidecarNames.h"
#include "VirtualSidecars.h"
#include "common/policy/DiagnosticIds.h"
#include "raster/gdal/GdalDrivers.h"
#include "raster/gdal/VirtualFiles.h"
#include "raster/geotiff/KnownRasters.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BFileContentNotValidException.h>
#include <Tellurion/BFileNotFoundException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BUnsupportedFileTypeException.h>
#include <Tellurion/ThreadLog.h>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace MapAnchor {

using namespace Tellurion;
using EOutcome = BReading::EOutcome;
using ESeverity = BDiagnostic::ESeverity;

namespace {

constexpr const char* kGiven = "given by the caller";

std::u16string LowerExtension(const BString& file) {
    return BFileUtilities::GetExtension(file).ToLower().GetUnits();
}

bool Holds(const std::vector<std::u16string_view>& extensions, std::u16string_view extension) {
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

template <class Matches>
const ReferenceFormat* FindRow(Matches matches) {
    const auto& table = ReferenceFormatTable();
    const auto found = std::find_if(table.begin(), table.end(), matches);
    return found == table.end() ? nullptr : &*found;
}

bool IsEmpty(const BGeoReference& reference) {
    return !reference.HasCoordSys() && !reference.HasMathTransform() && reference.PointPairVector.empty();
}

void ReadByName(const BReadingOptions& options, ReadingState& state) {
    const std::string kind =
        BReferenceFormats::Read(state.file, state.reference, state.used_file, options.GetWidth(),
                                options.GetHeight(), options.GetMathType(), &options.GetState().params)
            .StdStr();
    state.by_name = true;
    state.kind = FindRow([&](const ReferenceFormat& row) { return kind == row.name; });
}

void ReadByType(EReferenceType type, const BReadingOptions& options, ReadingState& state) {
    BGeoReference reference;
    BMapAnchor::Read(type, state.file, reference, state.width, state.height, options.GetMathType(),
                     options.GetFlags(), &options.GetState().params);
    state.reference = reference;
    state.by_name = false;
    state.used_file = state.file;
    state.kind = FindFormatByType(type);
    if (IsEmpty(reference))
        state.failure = ReadingFailure::Of<BFileContentNotValidException>(
            BString::Format("File <%ls> does not contain any valid referencing information.", state.file));
}

void ReadPdf(const BReadingOptions& options, ReadingState& state) {
    DescribePdfPage(options, state);
    try {
        ReadByType(EReferenceType::GeoPDF, options, state);
    } catch (...) {
        FailByPdf(state);
    }
}

void ReadTyped(const BReadingOptions& options, ReadingState& state) {
    const ReferenceFormat* const typed = options.HasType() ? nullptr : FindFormatByTypedName(state.file);
    const EReferenceType type = typed ? typed->type : options.GetType();
    if (type == EReferenceType::GeoPDF) return ReadPdf(options, state);
    ReadByType(type, options, state);
}

void AddPrj(ReadingState& state) {
    const BString prj = BFileUtilities::ChangeExtension(state.file, "prj");
    try {
        if (BCoordSys* system = BCoordSys::FromFile(prj)) {
            state.reference.SetCoordSys(BSharedPtr<BCoordSys>(system));
            state.files.push_back(prj);
            if (state.explains) state.origins.push_back({"system", prj, LinePlace(1)});
        }
    } catch (const BException& error) {
        state.Add(
            {.id = DiagnosticId::kPrjUnreadable, .text = prj.StdStr() + ": " + error.what(), .file = prj});
    }
}

/// The second chance of a world file that the named read refused.
void TryWorldFileByType(const BReadingOptions& options, ReadingState& state) {
    const ReadingFailure by_name = *state.failure;
    state.failure.reset();
    state.reference = BGeoReference();
    try {
        ReadByType(EReferenceType::WLD, options, state);
    } catch (const BException& error) {
        state.Add({.id = DiagnosticId::kReadRemark, .severity = ESeverity::Error, .text = error.what()});
        state.failure = by_name;
        return;
    }
    if (state.failure) {
        state.failure = by_name;
        return;
    }
    AddPrj(state);
    state.Add({.id = DiagnosticId::kReadByType,
               .text = "read by type, because the read by name refuses terms below 1e-7; the prj "
                       "file beside it was taken along",
               .file = state.file});
}

bool IsUnsupported(const ReadingState& state) {
    return state.failure && state.failure->type == BString("BUnsupportedFileTypeException");
}

bool HasWorldFileExtension(const BString& file) {
    const ReferenceFormat* const row = FindFormatByType(EReferenceType::WLD);
    return row && Holds(row->save_extensions, LowerExtension(file));
}

void FailByName(int error, ReadingState& state) {
    if (state.file.IsEmpty())
        state.failure = ReadingFailure::Of<BFileNotFoundException>("The name is empty.");
    else if (error == ENOENT || error == ENOTDIR)
        state.failure = ReadingFailure::Of<BFileNotFoundException>(
            BString::Format("File <%ls> does NOT exist.", state.file));
    else
        state.failure = ReadingFailure::Of<BFileAccessException>(BString::Format(
            "File <%ls> cannot be opened: %s.", state.file, std::generic_category().message(error)));
}

/// The same for a name of GDAL's file layer.
bool CheckVirtualName(ReadingState& state) {
    const VirtualFiles::Kind kind = VirtualFiles::KindOf(state.file);
    if (kind == VirtualFiles::Kind::None) FailByName(ENOENT, state);
    if (kind == VirtualFiles::Kind::Folder)
        state.failure = ReadingFailure::Of<BFileAccessException>(
            BString::Format("<%ls> is a folder, not a file.", state.file));
    return kind == VirtualFiles::Kind::File;
}

/// False, with a failure, for what is not a file that can be read.
bool CheckName(ReadingState& state) {
    const std::string name = state.file.StdStr();
    struct stat status {};
    if (name.empty() || name.find('\0') != std::string::npos) {
        FailByName(ENOENT, state);
        return false;
    }
    if (VirtualFiles::IsName(state.file)) return CheckVirtualName(state);
    if (stat(name.c_str(), &status) != 0) {
        FailByName(errno, state);
        return false;
    }
    if (S_ISREG(status.st_mode)) return true;
    state.failure = ReadingFailure::Of<BFileAccessException>(BString::Format(
        S_ISDIR(status.st_mode) ? "<%ls> is a folder, not a file." : "File <%ls> is not a regular file.",
        state.file));
    return false;
}

/// A reader that could not open the file does not say why. Looked at after a failure alone, so
/// that a name costs nothing where all is well.
void ExplainFailure(ReadingState& state) {
    if (!state.failure) return;
    ReadingState of_name;
    of_name.file = state.file;
    if (!CheckName(of_name)) {
        of_name.width = state.width;
        of_name.height = state.height;
        state = std::move(of_name);
    } else if (VirtualFiles::IsName(state.file)) {
        if (state.failure->type != BString("BFileNotFoundException")) return;
        state.failure = ReadingFailure::Of<BUnsupportedFileTypeException>(BString::Format(
            "File <%ls> is of a kind that is read only as a plain file; copy it to a folder first.",
            state.file));
    } else if (access(state.file.Utf8(), R_OK) != 0 && errno == EACCES) {
        FailByName(EACCES, state);
    }
}

void ReadSidecar(const BReadingOptions& options, ReadingState& state) {
    RunReader(state, [&] { ReadByName(options, state); });
    if (IsUnsupported(state) && HasWorldFileExtension(state.file))
        RunReader(state, [&] { TryWorldFileByType(options, state); });
}

/// By name; what no reader takes by its name, and no extension names, by GDAL's drivers.
void ReadRasterItself(const BReadingOptions& options, ReadingState& state) {
    RunReader(state, [&] { ReadByName(options, state); });
    const bool is_nameless = state.failure && BFileUtilities::GetExtension(state.file).IsEmpty();
    if (!IsUnsupported(state) && !is_nameless) return;
    ReadingState by_gdal;
    by_gdal.width = state.width;
    by_gdal.height = state.height;
    by_gdal.explains = state.explains;
    ReadAsGdal(state.file, options, by_gdal);
    if (by_gdal.failure && !by_gdal.is_raster) return;
    by_gdal.by_name = false;
    state = std::move(by_gdal);
}

void ReadRaster(const BReadingOptions& options, ReadingState& state, SourceList* wanted) {
    const std::vector<SidecarName> beside = FindSidecars(state.file);
    const bool asks = wanted || !options.GetState().source.IsEmpty();
    if (!asks && (beside.empty() || !IsRasterExtension(BFileUtilities::GetExtension(state.file).ToLower()))) {
        ReadRasterItself(options, state);
        if (!state.failure || beside.empty() || !state.is_raster) return;
        state.failure.reset();
        state.diagnostics.clear();
    }
    SourceList sources = ReadSources(state.file, beside, options);
    ReadingState whole;
    ReadAsGdal(state.file, options, whole);
    if (state.width <= 0) {
        state.width = whole.width;
        state.height = whole.height;
    }
    MeasureSources(sources, whole, state.width, state.height);
    RunReader(state, [&] { ReadFromWinner(sources, options, whole, state); });
    if (wanted) *wanted = std::move(sources);
}

void Read(const BReadingOptions& options, ReadingState& state, SourceList* wanted) {
    const ReferenceFormat* const typed = FindFormatByTypedName(state.file);
    if (options.HasType() || (typed && typed->typed_read))
        return RunReader(state, [&] { ReadTyped(options, state); });
    if (IsSidecarName(state.file)) return ReadSidecar(options, state);
    ReadRaster(options, state, wanted);
}

void AssignSystem(const BReadingOptions& options, ReadingState& state) {
    const BSharedPtr<BCoordSys> system = options.GetCoordSys();
    if (system.IsEmpty() || (state.reference.HasCoordSys() && !options.OverridesCoordSys())) return;
    state.reference.SetCoordSys(system);
    if (!state.explains) return;
    std::erase_if(state.origins, [](const auto& origin) { return origin.Value == BString("system"); });
    state.origins.push_back({"system", "", kGiven});
}

/// The size that the caller gave is the one that counts.
void ExplainSize(const BReadingOptions& options, ReadingState& state) {
    if (!state.explains || options.GetWidth() <= 0) return;
    std::erase_if(state.origins, [](const auto& origin) { return origin.Value == BString("size"); });
    state.origins.push_back({"size", "", kGiven});
}

}  // namespace

EOutcome OutcomeOf(const ReadingState& state) {
    if (!state.failure) return EOutcome::Read;
    const EOutcome by_type = BReading::OutcomeOf(state.failure->type);
    const bool has_map =
        state.page && state.page->Loaded &&
        (state.page->Dialect != BGeoPDFPage::EDialect::None || !state.page->Explanation.IsEmpty());
    if (has_map && by_type != EOutcome::OutOfMemory) return EOutcome::Refused;
    if (by_type == EOutcome::NoReference) return by_type;
    if (state.page && state.page->Loaded && state.page->Dialect == BGeoPDFPage::EDialect::None)
        return EOutcome::NoReference;
    return state.page && state.page->Encrypted ? EOutcome::Refused : by_type;
}

namespace {

/// A file that another kind of reader took, or none, was only tried as a world file.
bool IsAboutThis(const BDiagnostic& remark, const ReadingState& state) {
    const bool is_of_world_file = remark.GetId() == BString(DiagnosticId::kWorldFileText) ||
                                  remark.GetId() == BString(DiagnosticId::kScaleZero);
    if (!is_of_world_file || (state.kind && std::string_view(state.kind->name) == "WLD")) return true;
    return !state.kind && HasWorldFileExtension(state.file);
}

/// People cannot see from outside that a file is empty, or why a text of that name is refused.
void ExplainRefusedContent(ReadingState& state) {
    std::error_code no_size;
    if (std::filesystem::file_size(state.file.StdStr(), no_size) == 0 && !no_size) {
        state.Add(
            {.id = DiagnosticId::kFileEmpty, .severity = ESeverity::Error, .text = "the file is empty"});
        return;
    }
    if (state.failure->type != "BUnsupportedFileTypeException") return;
    const std::string driver = GdalDrivers::RefusedFor(state.file);
    if (driver.empty()) return;
    state.Add({.id = DiagnosticId::kGdalDriverNotAllowed,
               .severity = ESeverity::Error,
               .text = "its content is for GDAL's driver " + driver +
                       ", which opens hosts or other files that a file names, and must be allowed by name"});
}

}  // namespace

void TakeNotes(const ReadNotes& notes, ThreadLog& log, ReadingState& state) {
    if (notes.width > 0 && notes.height > 0) {
        state.is_raster = true;
        if (state.width <= 0) {
            state.width = notes.width;
            state.height = notes.height;
        }
    }
    state.centre_anchored = notes.centre_anchored;
    if (notes.stated_width > 0 && notes.stated_height > 0) {
        state.stated_width = notes.stated_width;
        state.stated_height = notes.stated_height;
    }
    for (const BString& file : notes.files)
        if (file != state.used_file) state.files.push_back(file);
    if (!notes.exact_points.empty()) state.exact_points = notes.exact_points;
    for (const ReadNotes::Origin& origin : notes.origins)
        state.origins.push_back(
            {origin.value, origin.file.IsEmpty() ? state.used_file : origin.file, origin.place});
    for (const BDiagnostic& remark : notes.diagnostics)
        if (IsAboutThis(remark, state)) state.diagnostics.push_back(remark);
    for (const BString& entry : log.Take()) {
        std::string line = entry.StdStr();
        std::replace(line.begin(), line.end(), '\n', ' ');  // those of the readers' formats
        const char* const id = IdOfPdfRemark(line);
        if (id) line.erase(0, std::string_view(id).size() + 2);
        state.Add({.id = id ? id : DiagnosticId::kReadRemark,
                   .severity = state.failure ? ESeverity::Error : ESeverity::Warning,
                   .text = line});
    }
}

namespace {

void ReadAll(const BReadingOptions& options, ReadingState& state, SourceList* sources) {
    const GdalDrivers::Scope allowed(&options.GetState().params);
    std::optional<HeaderReads> headers;
    if (options.ReadsHeaders()) headers.emplace();
    state.width = options.GetWidth();
    state.height = options.GetHeight();
    state.explains = options.Explains();
    const VirtualSidecars virtual_files(state.file);
    Read(options, state, sources);
    ExplainFailure(state);
    if (state.failure) {
        ExplainRefusedContent(state);
        state.reference = BGeoReference();
        state.origins.clear();
    } else {
        if (std::find(state.files.begin(), state.files.end(), state.used_file) == state.files.end())
            state.files.insert(state.files.begin(), state.used_file);
        AssignSystem(options, state);
        ExplainSize(options, state);
        if (options.FindsSize() && state.width <= 0) FindRasterSize(state);
        if (state.width <= 0 && state.stated_width > 0) {
            state.width = state.stated_width;
            state.height = state.stated_height;
        }
        CheckReading(options, state);
    }
}

}  // namespace

void ReadInSteps(const BReadingOptions& options, ReadingState& state, SourceList* sources) {
    try {
        ReadAll(options, state, sources);
    } catch (const BUnsupportedFileTypeException&) {  // a module is missing that reads names or sidecars
        state.failure = ReadingFailure::Current();
    }
    state.outcome = OutcomeOf(state);
}

}  // namespace MapAnchor
