#include "read/Failure.h"

#include <MapAnchor/BGeoReferenceNotSupportedException.h>
#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BFileContentNotValidException.h>
#include <Tellurion/BFileNotFoundException.h>
#include <Tellurion/BUnsupportedFileTypeException.h>

#include <exception>
#include <new>

namespace Tool {

using namespace Tellurion;

namespace {

template <class... Errors>
bool IsOneOf(const BException& error) {
    return (... || (dynamic_cast<const Errors*>(&error) != nullptr));
}

FailureKind KindOf(const BException& error) {
    if (IsOneOf<BFileNotFoundException, BFileAccessException>(error)) return FailureKind::Access;
    if (IsOneOf<BFileContentNotValidException>(error)) return FailureKind::NoReference;
    if (IsOneOf<BUnsupportedFileTypeException, MapAnchor::BGeoReferenceNotSupportedException>(error))
        return FailureKind::Unsupported;
    return FailureKind::Invalid;
}

}  // namespace

const char* WordFor(FailureKind kind) {
    switch (kind) {
        case FailureKind::Access:
            return "access";
        case FailureKind::NoReference:
            return "no-reference";
        case FailureKind::Unsupported:
            return "unsupported";
        case FailureKind::Crash:
            return "crash";
        case FailureKind::Timeout:
            return "timeout";
        case FailureKind::Memory:
            return "memory";
        case FailureKind::Invalid:
            break;
    }
    return "invalid";
}

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
            error.GetDetail().StdStr(), KindOf(error)};
}

Failure CurrentFailure() {
    try {
        throw;
    } catch (const BException& error) {
        return FailureOf(error);
    } catch (const std::bad_alloc&) {
        return {"std::bad_alloc", "Out of memory.", "", "", FailureKind::Memory};
    } catch (const std::exception& error) {
        return {"std::exception", error.what(), "", ""};
    } catch (...) {
        return {"unknown", "A failure of another library that has no text here.", "", ""};
    }
}

Failure MakeFailure(const FailureType& type, const std::string& detail) {
    return {type.name, "", "mapanchor", detail, type.kind};
}

}  // namespace Tool
