#include "read/ReadFile.h"

#include "read/PdfPage.h"
#include "terminal/TargetFile.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>
#include <Tellurion/BFileUtilities.h>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <new>

using MapAnchor::BMapAnchor;
using MapAnchor::BReferenceFormat;
using MapAnchor::BReferenceFormats;
using namespace Tellurion;

namespace {

constexpr const char* kSource = "mapanchor";

const std::vector<BReferenceFormat>& Formats() {
    static const std::vector<BReferenceFormat> formats = BReferenceFormats::List();
    return formats;
}

BString LowerExtension(const BString& file) {
    return BFileUtilities::GetExtension(file).ToLower();
}

bool Holds(const std::vector<BString>& extensions, const BString& extension) {
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

template <class Matches>
const BReferenceFormat* FindFormat(Matches matches) {
    const auto found = std::find_if(Formats().begin(), Formats().end(), matches);
    return found == Formats().end() ? nullptr : &*found;
}

const BReferenceFormat* FormatNamed(const BString& name) {
    return FindFormat([&](const auto& format) { return format.GetName() == name; });
}

/// The kind that a name says, though only a read by type takes it.
std::optional<EReferenceType> TypeByExtension(const BString& file) {
    const BReferenceFormat* format = FindFormat([extension = LowerExtension(file)](const auto& known) {
        return Holds(known.GetTypedExtensions(), extension);
    });
    return format ? std::optional(format->GetType()) : std::nullopt;
}

const BReferenceFormat* KindByType(EReferenceType type) {
    return FindFormat([type](const auto& format) { return format.HasType() && format.GetType() == type; });
}

bool HasWorldFileExtension(const BString& file) {
    const BReferenceFormat* world_file = KindByType(EReferenceType::WLD);
    return world_file && Holds(world_file->GetSaveExtensions(), LowerExtension(file));
}

bool IsEmpty(const BGeoReference& reference) {
    return !reference.HasCoordSys() && !reference.HasMathTransform() && reference.PointPairVector.empty();
}

void SetKind(ReadResult& result, const BReferenceFormat* format) {
    if (!format) return;
    result.kind = format->GetName().StdStr();
    result.centre_anchored = format->IsCentreAnchored();
    result.is_sidecar = format->IsSidecar();
}

void ReadByName(const BString& file, const ReadOptions& options, ReadResult& result) {
    BString used;
    const BString kind = BReferenceFormats::Read(file, result.reference, used, options.width.value_or(0),
                                                 options.height.value_or(0), options.fit, &options.params);
    result.road = Road::Name;
    result.used_file = used.StdStr();
    SetKind(result, FormatNamed(kind));
}

void ReadByType(const BString& file, EReferenceType type, const ReadOptions& options, ReadResult& result) {
    BGeoReference reference;
    BMapAnchor::Read(type, file, reference, result.width.value_or(0), result.height.value_or(0), options.fit,
                     options.flags, &options.params);
    result.reference = reference;
    result.road = Road::Type;
    result.used_file = file.StdStr();
    SetKind(result, KindByType(type));
    if (IsEmpty(reference))
        result.failure =
            Failure{"BFileContentNotValidException", "", kSource,
                    "File <" + result.file + "> does not contain any valid referencing information."};
}

void AddPrj(const BString& file, ReadResult& result) {
    const BString prj = BFileUtilities::ChangeExtension(file, "prj");
    try {
        if (BCoordSys* system = BCoordSys::FromFile(prj))
            result.reference.SetCoordSys(BSharedPtr<BCoordSys>(system));
    } catch (const BException& error) {
        result.diagnostics.push_back({false, prj.StdStr() + ": " + error.what()});
    }
}

/// The second chance of a world file that the named road refused.
void TryWorldFileByType(const BString& file, const ReadOptions& options, ReadResult& result) {
    const Failure by_name = *result.failure;
    result.failure.reset();
    result.reference = BGeoReference();
    try {
        ReadByType(file, EReferenceType::WLD, options, result);
    } catch (const BException& error) {
        result.diagnostics.push_back({true, error.what()});
        result.failure = by_name;
        return;
    }
    if (!result.Ok()) {
        result.failure = by_name;
        return;
    }
    AddPrj(file, result);
    result.diagnostics.push_back({false,
                                  "read by type, because the read by name refuses terms below 1e-7; the prj "
                                  "file beside it was taken along"});
}

/// A raster whose sidecar lies beside it: say so, since naming the raster is the usual slip.
void HintAtSidecar(const BString& file, ReadResult& result) {
    const BString extension = BMapAnchor::GenerateWorldFileExt(file);
    for (const BString& candidate : {extension.Right(extension.GetLength() - 1), BString("wld")}) {
        const BString sidecar = BFileUtilities::ChangeExtension(file, candidate);
        if (sidecar == file || !BFileUtilities::Exists(sidecar)) continue;
        result.diagnostics.push_back({false, "a world file lies beside it; name that: " + sidecar.StdStr()});
        return;
    }
}

void ReadPdf(const BString& file, const ReadOptions& options, ReadResult& result) {
    LookAtPdfPage(file, options, result);
    try {
        ReadByType(file, EReferenceType::GeoPDF, options, result);
    } catch (...) {
        result.failure = PdfFailure(*result.page);
    }
    if (result.failure) ExplainPdfFailure(result);
}

void Dispatch(const BString& file, const ReadOptions& options, ReadResult& result) {
    const std::optional<EReferenceType> type = options.type ? options.type : TypeByExtension(file);
    if (type == EReferenceType::GeoPDF) return ReadPdf(file, options, result);
    if (type) return ReadByType(file, *type, options, result);
    ReadByName(file, options, result);
}

/// The number of the error that keeps a name from being that of a file to read; 0 for none.
int FaultOfName(const std::string& name) {
    struct stat state {};
    if (name.empty() || name.find('\0') != std::string::npos) return ENOENT;
    if (BFileUtilities::Exists(BString(name)))
        return access(name.c_str(), R_OK) != 0 && errno == EACCES ? EACCES : 0;
    return stat(name.c_str(), &state) == 0 ? ENOENT : errno;
}

Failure FailureOfName(const std::string& name, int error) {
    if (name.empty()) return {"BFileNotFoundException", "", kSource, "The name is empty."};
    if (error == ENOENT || error == ENOTDIR)
        return {"BFileNotFoundException", "", kSource, "File <" + name + "> does NOT exist."};
    return {"BFileAccessException", "", kSource,
            "File <" + name + "> cannot be opened: " + ReasonOf(error) + "."};
}

/// A folder that no reader takes was meant for batch.
void ExplainFolder(const std::string& name, ReadResult& result) {
    std::error_code error;
    if (std::filesystem::is_directory(name, error))
        result.failure = Failure{"BFileAccessException", "", kSource,
                                 "<" + name + "> is a folder; mapanchor batch reads the files in it."};
}

bool IsUnsupported(const Failure& failure) {
    return failure.type == "BUnsupportedFileTypeException";
}

}  // namespace

std::string Failure::Text() const {
    std::string text = message;
    if (!text.empty() && !detail.empty()) text += " ";
    text += detail;
    while (text.ends_with('\n'))  // some of the library's texts end so
        text.pop_back();
    return text.empty() ? type : text;
}

Failure FailureOf(const BException& error) {
    return {error.GetTypeName(), error.GetMessageText().StdStr(), error.GetSource().StdStr(),
            error.GetDetail().StdStr()};
}

Failure CurrentFailure() {
    try {
        throw;
    } catch (const BException& error) {
        return FailureOf(error);
    } catch (const std::bad_alloc&) {
        return {"std::bad_alloc", "Out of memory.", "", ""};
    } catch (const std::exception& error) {
        return {"std::exception", error.what(), "", ""};
    } catch (...) {
        return {"unknown", "A failure of another library that has no text here.", "", ""};
    }
}

ExitStatus ReadResult::Status() const {
    if (!failure) return diagnostics.empty() ? ExitStatus::Done : ExitStatus::Warnings;
    if (failure->type == "BFileContentNotValidException" || (page && IsWithoutMap(*page)))
        return ExitStatus::NoReference;
    if (page && page->Encrypted) return ExitStatus::Refused;
    if (IsUnsupported(*failure) || failure->type == "BGeoReferenceNotSupportedException")
        return ExitStatus::Refused;
    return ExitStatus::Error;
}

ReadResult ReadFile(const std::string& name, const ReadOptions& options, LogCollector& log) {
    ReadResult result;
    result.file = name;
    result.width = options.width;
    result.height = options.height;
    const BString file(name);
    if (const int error = FaultOfName(name); error != 0) {
        result.failure = FailureOfName(name, error);
        return result;
    }
    if (!name.empty() && !BFileUtilities::IsRegularFile(file)) {
        result.failure =
            Failure{"BFileAccessException", "", kSource, "File <" + name + "> is not a regular file."};
        return result;
    }
    try {
        Dispatch(file, options, result);
    } catch (...) {
        result.failure = CurrentFailure();
    }
    const bool refused = result.failure && IsUnsupported(*result.failure);
    if (refused && !options.type && HasWorldFileExtension(file)) TryWorldFileByType(file, options, result);
    if (result.failure && IsUnsupported(*result.failure)) HintAtSidecar(file, result);
    if (result.failure) ExplainFolder(name, result);
    log.MoveTo(result.diagnostics, !result.Ok());
    return result;
}
