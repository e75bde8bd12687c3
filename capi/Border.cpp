#include "Border.h"

#include "read/Failure.h"
#include "read/Systems.h"

#include <Tellurion/BException.h>

#include <cstdlib>
#include <new>
#include <string_view>

namespace Border {

namespace {

struct LastFailure {
    int status = MAPANCHOR_OK;
    std::string text;
    bool has_no_memory = false;  ///< not even for the text
};

LastFailure& Last() {
    thread_local LastFailure last;
    return last;
}

}  // namespace

int StatusOf(const Tool::Failure& failure) {
    if (failure.type == "BFileNotFoundException") return MAPANCHOR_NOT_FOUND;
    if (failure.type == "BGeoReferenceWriteException") return MAPANCHOR_NOT_WRITTEN;
    if (failure.type == "BReadParametersException") return MAPANCHOR_BAD_ARGUMENT;
    return StatusOf(MapAnchor::BReading::OutcomeOf(Tellurion::BString(failure.type)));
}

int Fail(int status, const std::string& text) noexcept {
    LastFailure& last = Last();
    last.status = status;
    last.has_no_memory = false;
    try {
        last.text = text;
    } catch (...) {
        last.has_no_memory = true;
    }
    return status;
}

int FailCurrent() noexcept {
    try {
        try {
            throw;
        } catch (const Refusal& refusal) {
            return Fail(refusal.status, refusal.text);
        } catch (...) {
            const Tool::Failure failure = Tool::CurrentFailure();
            return Fail(StatusOf(failure), failure.Text());
        }
    } catch (...) {
        Last().status = MAPANCHOR_OUT_OF_MEMORY;
        Last().has_no_memory = true;
        return MAPANCHOR_OUT_OF_MEMORY;
    }
}

void CheckSize(std::size_t size, const char* name) {
    if (size >= 2 * sizeof(std::size_t)) return;
    throw Refusal{MAPANCHOR_BAD_ARGUMENT,
                  std::string(name) + ": the member size is not set; set it to sizeof of the structure"};
}

void CheckZero(const void* bytes, std::size_t size, const char* name) {
    const std::string_view rest(static_cast<const char*>(bytes), size);
    if (rest.find_first_not_of('\0') == std::string_view::npos) return;
    throw Refusal{MAPANCHOR_BAD_ARGUMENT, std::string(name) +
                                              " has a member that version " MAPANCHOR_VERSION
                                              " of the library does not know; install a newer one"};
}

char* CopyOf(std::string text) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (!copy) throw std::bad_alloc();
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

void GiveDiagnostic(const Tool::Diagnostics& list, std::size_t index, mapanchor_diagnostic* to) {
    const Tool::Diagnostic& remark = At(list, index, "diagnostics");
    mapanchor_diagnostic known{};
    known.severity = remark.is_error ? 2 : remark.is_note ? 0 : 1;
    known.id = remark.id.c_str();
    known.text = remark.text.c_str();
    known.file = remark.file.c_str();
    known.place = remark.place.c_str();
    Give(known, to, "diagnostic");
}

Tellurion::BSharedPtr<Tellurion::BCoordSys> SystemOf(const std::string& text) {
    std::string failure;
    auto system = Tool::KnownSystem(text, failure);
    if (!system) throw Refusal{MAPANCHOR_BAD_ARGUMENT, failure};
    return Tellurion::BSharedPtr<Tellurion::BCoordSys>(system.release());
}

}  // namespace Border

extern "C" {

const char* mapanchor_version(void) {
    return MAPANCHOR_VERSION;
}

const char* mapanchor_last_error(void) {
    const auto& last = Border::Last();
    return last.has_no_memory ? "Out of memory." : last.text.c_str();
}

int mapanchor_last_status(void) {
    return Border::Last().status;
}

void mapanchor_free_text(char* text) {
    std::free(text);
}
}
