#include "ReadingSteps.h"

#include "ReferenceFormats.h"
#include "common/DiagnosticIds.h"
#include "raster/gdal/GdalDrivers.h"

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
#include <string>
#include <string_view>
#include <system_error>

namespace MapAnchor {

using namespace Tellurion;
using EOutcome = BReading::EOutcome;
using ESeverity = BDiagnostic::ESeverity;

namespace {

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

/// The kind that a name says, though only a read by type takes it.
const ReferenceFormat* TypedKindOf(const BString& file) {
    return FindRow([extension = LowerExtension(file)](const ReferenceFormat& row) {
        return Holds(row.typed_extensions, extension);
    });
}

bool IsEmpty(const BGeoReference& reference) {
    return !reference.HasCoordSys() && !reference.HasMathTransform() && reference.PointPairVector.empty();
}

void ReadByName(const BReadingOptions& options, ReadingState& state) {
    const BParamList params = options.GetParams();
    const BString kind =
        BReferenceFormats::Read(state.file, state.reference, state.used_file, options.GetWidth(),
                                options.GetHeight(), options.GetMathType(), &params);
    state.by_name = true;
    state.kind = FindRow([&](const ReferenceFormat& row) { return kind == BString(row.name); });
}

void ReadByType(EReferenceType type, const BReadingOptions& options, ReadingState& state) {
    const BParamList params = options.GetParams();
    BGeoReference reference;
    BMapAnchor::Read(type, state.file, reference, state.width, state.height, options.GetMathType(),
                     options.GetFlags(), &params);
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

void Dispatch(const BReadingOptions& options, ReadingState& state) {
    const ReferenceFormat* const typed = options.HasType() ? nullptr : TypedKindOf(state.file);
    if (!options.HasType() && !typed) return ReadByName(options, state);
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

/// A raster whose sidecar lies beside it: naming the raster is the usual slip.
void HintAtSidecar(ReadingState& state) {
    const BString extension = BMapAnchor::GenerateWorldFileExt(state.file);
    for (const BString& candidate : {extension.Right(extension.GetLength() - 1), BString("wld")}) {
        const BString sidecar = BFileUtilities::ChangeExtension(state.file, candidate);
        if (sidecar == state.file || !BFileUtilities::Exists(sidecar)) continue;
        state.Add({.id = DiagnosticId::kSidecarBeside,
                   .text = "did you mean the world file beside it? " + sidecar.StdStr(),
                   .file = sidecar});
        return;
    }
}

/// The number of the error that keeps a name from being that of a file to read; 0 for none.
int FaultOfName(const std::string& name) {
    struct stat status {};
    if (name.empty() || name.find('\0') != std::string::npos) return ENOENT;
    if (stat(name.c_str(), &status) != 0) return errno;
    return access(name.c_str(), R_OK) != 0 && errno == EACCES ? EACCES : 0;
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

/// False, with a failure, for what is not a file that can be read.
bool CheckName(ReadingState& state) {
    const std::string name = state.file.StdStr();
    if (const int error = FaultOfName(name); error != 0) {
        FailByName(error, state);
        return false;
    }
    if (BFileUtilities::IsRegularFile(state.file)) return true;
    struct stat status {};
    const bool is_folder = stat(name.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    state.failure = ReadingFailure::Of<BFileAccessException>(BString::Format(
        is_folder ? "<%ls> is a folder, not a file." : "File <%ls> is not a regular file.", state.file));
    return false;
}

void Read(const BReadingOptions& options, ReadingState& state) {
    if (!CheckName(state)) return;
    try {
        Dispatch(options, state);
    } catch (...) {
        state.failure = ReadingFailure::Current();
    }
    if (IsUnsupported(state) && !options.HasType() && HasWorldFileExtension(state.file))
        TryWorldFileByType(options, state);
    if (IsUnsupported(state)) HintAtSidecar(state);
}

void AssignSystem(const BReadingOptions& options, ReadingState& state) {
    const BSharedPtr<BCoordSys> system = options.GetCoordSys();
    if (system.IsEmpty() || (state.reference.HasCoordSys() && !options.OverridesCoordSys())) return;
    state.reference.SetCoordSys(system);
}

void TakeLog(ThreadLog& log, ReadingState& state) {
    for (const BString& entry : log.Take()) {
        std::string line = entry.StdStr();
        std::replace(line.begin(), line.end(), '\n', ' ');  // those of the readers' formats
        state.Add({.id = DiagnosticId::kReadRemark,
                   .severity = state.failure ? ESeverity::Error : ESeverity::Warning,
                   .text = line});
    }
}

}  // namespace

EOutcome OutcomeOf(const ReadingState& state) {
    if (!state.failure) return EOutcome::Read;
    const std::string type = state.failure->type.StdStr();
    if (type == "BFileContentNotValidException") return EOutcome::NoReference;
    if (state.page && state.page->Loaded && state.page->Dialect == BGeoPDFPage::EDialect::None)
        return EOutcome::NoReference;
    if (state.page && state.page->Encrypted) return EOutcome::Refused;
    if (type == "BUnsupportedFileTypeException" || type == "BGeoReferenceNotSupportedException")
        return EOutcome::Refused;
    if (type == "BFileNotFoundException") return EOutcome::NotFound;
    if (type == "BFileAccessException") return EOutcome::NoAccess;
    return type == "std::bad_alloc" ? EOutcome::OutOfMemory : EOutcome::Invalid;
}

void ReadInSteps(const BReadingOptions& options, ReadingState& state) {
    const BParamList params = options.GetParams();
    const GdalDrivers::Scope allowed(&params);
    ThreadLog log;
    state.width = options.GetWidth();
    state.height = options.GetHeight();
    Read(options, state);
    if (state.failure) {
        state.reference = BGeoReference();
    } else {
        state.files.insert(state.files.begin(), state.used_file);
        AssignSystem(options, state);
        if (options.FindsSize() && state.width <= 0) FindRasterSize(state);
    }
    TakeLog(log, state);
    state.outcome = OutcomeOf(state);
}

}  // namespace MapAnchor
