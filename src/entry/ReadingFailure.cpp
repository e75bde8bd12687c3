#include "ReadingState.h"

#include <MapAnchor/BGeoReferenceReadException.h>

#include <new>

namespace MapAnchor {

using Tellurion::BException;
using Tellurion::BString;

BString ReadingFailure::Text() const {
    std::string text = message.StdStr();
    if (!text.empty() && !detail.IsEmpty()) text += " ";
    text += detail.StdStr();
    while (text.ends_with('\n'))  // some of the readers' texts end so
        text.pop_back();
    return text.empty() ? type : BString(text);
}

ReadingFailure ReadingFailure::Current() {
    const std::exception_ptr error = std::current_exception();
    // A reader's failures of other families leave as the one of reading.
    const auto foreign = [](const char* family, const BString& words) {
        return ReadingFailure{family,
                              words,
                              {},
                              {},
                              std::make_exception_ptr(BGeoReferenceReadException("BReading::Of", words))};
    };
    try {
        throw;
    } catch (const BException& known) {
        return {known.GetTypeName(), known.GetMessageText(), known.GetSource(), known.GetDetail(), error};
    } catch (const std::bad_alloc&) {
        return {"std::bad_alloc", "Out of memory.", {}, {}, error};
    } catch (const std::exception& standard) {
        return foreign("std::exception", standard.what());
    } catch (...) {
        return foreign("unknown", "A failure of another library that has no text here.");
    }
}

}  // namespace MapAnchor
