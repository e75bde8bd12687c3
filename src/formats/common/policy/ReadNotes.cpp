#include "common/policy/ReadNotes.h"

#include "common/policy/DiagnosticIds.h"

#include <Tellurion/BPointPair.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace MapAnchor {
namespace {

thread_local ReadNotes* listener = nullptr;

}  // namespace

ReadNotes::ReadNotes(bool explains) : outer_(std::exchange(listener, this)), explains_(explains) {}

ReadNotes::~ReadNotes() {
    listener = outer_;
}

ReadNotes* ReadNotes::Current() {
    return listener;
}

ReadNotes* ReadNotes::Explaining() {
    return listener && listener->explains_ ? listener : nullptr;
}

std::string LinePlace(long first, long last) {
    if (first <= 0) return {};
    if (last <= first) return "line " + std::to_string(first);
    return "lines " + std::to_string(first) + " to " + std::to_string(last);
}

std::string BytePlace(std::uint64_t offset) {
    return "byte " + std::to_string(offset);
}

void DroppedFractions::Count(double column, double row, long whole_column, long whole_row) {
    constexpr double kNothing = 1e-9;
    const Tellurion::BPointPair kept(whole_column, whole_row, 0.0, 0.0, 0.0, {}, true);  // within 32 bits
    ++points_;
    const double across = std::fabs(column - kept.Column);
    const double down = std::fabs(row - kept.Row);
    const double distance = std::hypot(across, down);
    if (!(distance > kNothing) || !std::isfinite(distance)) return;
    // Cut or rounded, a fraction costs less than a pixel along either axis.
    Loss& loss = std::max(across, down) < 1.0 ? fractions_ : moves_;
    ++loss.points;
    loss.largest = std::max(loss.largest, distance);
}

void DroppedFractions::Report(const Tellurion::BString& file) const {
    ReadNotes* const notes = ReadNotes::Current();
    if (!notes) return;
    const auto add = [&](const Loss& loss, const char* what) {
        if (loss.points == 0) return;
        notes->Add({.id = DiagnosticId::kPointsRounded,
                    .text = std::to_string(loss.points) + " of " + std::to_string(points_) +
                            " control points state " + what + ": up to " +
                            Tellurion::PrintFixed(loss.largest, 2) + " px",
                    .file = file});
    };
    add(fractions_, "fractions of pixels, which are dropped");
    add(moves_, "pixels that are no whole numbers of 32 bits, which are moved");
}

}  // namespace MapAnchor
