#include "read/Failure.h"

#include <exception>
#include <new>

namespace Tool {

using MapAnchor::BReading;
using namespace Tellurion;

FailureKind KindOf(BReading::EOutcome outcome) {
    using EOutcome = BReading::EOutcome;
    switch (outcome) {
        case EOutcome::NoReference:
            return FailureKind::NoReference;
        case EOutcome::Refused:
            return FailureKind::Unsupported;
        case EOutcome::NotFound:
        case EOutcome::NoAccess:
            return FailureKind::Access;
        case EOutcome::OutOfMemory:
            return FailureKind::Memory;
        default:
            return FailureKind::Invalid;
    }
}

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
            error.GetDetail().StdStr(), KindOf(BReading::OutcomeOf(error.GetTypeName()))};
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
