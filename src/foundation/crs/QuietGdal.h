#pragma once

#include <Tellurion/QuietProj.h>

#include <cpl_error.h>

#include <string>

namespace Tellurion {

/// While one lives, no error handler of the host hears of GDAL's errors in this thread,
/// and CPLGetLastError* speak of what happened since. Afterwards they say again what
/// they said before. PROJ prints nothing meanwhile.
class QuietGdal {
public:
    QuietGdal() : type_(CPLGetLastErrorType()), number_(CPLGetLastErrorNo()), text_(CPLGetLastErrorMsg()) {
        CPLPushErrorHandlerEx(Listen, this);
        CPLErrorReset();
    }
    ~QuietGdal() {
        CPLPopErrorHandler();
        CPLErrorSetState(type_, number_, text_.c_str());
    }
    QuietGdal(const QuietGdal&) = delete;
    QuietGdal& operator=(const QuietGdal&) = delete;

    /// The text of the first failure that GDAL reported; later reports do not hide it.
    /// What PROJ has to say of a coordinate system counts as no failure.
    const std::string& FirstFailure() const { return failure_; }
    void ForgetFailures() { failure_.clear(); }

private:
    static void CPL_STDCALL Listen(CPLErr type, CPLErrorNum, const char* text) {
        auto* self = static_cast<QuietGdal*>(CPLGetErrorHandlerUserData());
        const std::string message = text ? text : "";
        if (type < CE_Failure || !self->failure_.empty() || message.rfind("PROJ:", 0) == 0) return;
        self->failure_ = message.empty() ? "GDAL failed without a word" : message;
    }

    const QuietProj quiet_proj_;
    CPLErr type_;
    CPLErrorNum number_;
    std::string text_;
    std::string failure_;
};

}  // namespace Tellurion
