#pragma once

#include "terminal/ExitStatus.h"

namespace Tool {

/// What many inputs come to: one status for all, or "some failed".
class Tally {
public:
    void Count(ExitStatus status) {
        const bool usable = status == ExitStatus::Done || status == ExitStatus::Warnings;
        ++(usable ? usable_ : failed_);
        if (status == ExitStatus::Warnings) warned_ = true;
        if (usable) return;
        failure_ = failed_ == 1 || failure_ == status ? status : ExitStatus::Error;
    }
    ExitStatus Status() const {
        if (failed_ > 0) return usable_ > 0 ? ExitStatus::Warnings : failure_;
        return warned_ ? ExitStatus::Warnings : ExitStatus::Done;
    }

private:
    int usable_ = 0;
    int failed_ = 0;
    bool warned_ = false;
    ExitStatus failure_ = ExitStatus::Done;
};

}  // namespace Tool
