#include "sidecar/points/PointTable.h"

#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BFileNotFoundException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/RandomAccessFile.h>

namespace MapAnchor {

using namespace Tellurion;

std::string PointFileContent(const BString& file, const char* source) {
    constexpr std::size_t kMaxLength = std::size_t{64} << 20;
    if (!BFileUtilities::Exists(file))
        throw BFileNotFoundException(source, BString::Format("File <%ls> does NOT exist.", file));
    const RandomAccessFile in(file);
    if (!in.IsOpen())
        throw BFileAccessException(source, BString::Format("File <%ls> cannot be opened for reading.", file));
    if (in.Size() > kMaxLength)
        throw BFileAccessException(
            source, BString::Format("File <%ls> is larger than 64 MiB, too large for points.", file));
    return in.Window(0, static_cast<std::size_t>(in.Size()));
}

void ThrowPointFault(const BString& file, const PointFault& fault, const char* source) {
    const BString place =
        fault.line == 0 ? BString() : BString::Format(" in line %zu, column %zu", fault.line, fault.column);
    throw BGeoReferenceInvalidReferenceFileException(
        source,
        BString::Format("File <%ls> cannot be read as control points%ls: %s.", file, place, fault.text));
}

void ThrowNoPoints(const BString& file, const char* source) {
    throw BGeoReferenceInvalidReferenceFileException(
        source, BString::Format("File <%ls> has no control points.", file));
}

}  // namespace MapAnchor
