#include "commands/Convert.h"

namespace Tool {

using namespace Tellurion;
using MapAnchor::BReferenceFormat;
using MapAnchor::BSaving;

void WarnOfLosses(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const auto losses = BSaving::FindLosses(BString(options.target), reference, SavingOptionsOf(options));
    AddRemarks(losses, outcome.diagnostics);
    outcome.losses = losses.size();
}

bool HasWhatItNeeds(const ConvertOptions& options, const BGeoReference& reference, Outcome& outcome) {
    const std::optional<BReferenceFormat>& format = outcome.plan.format;
    const bool has_size = options.read.width && *options.read.width > 1 && *options.read.height > 1;
    if (!format || !format->NeedsRasterSize() || has_size || !reference.PointPairVector.empty() ||
        !reference.HasMathTransform())
        return true;
    outcome.Fail(ExitStatus::Error, FailureTypes::kWrite,
                 "The reference has no control points, and the corners that stand for them need the raster's "
                 "size, two pixels at least each way: --size WxH.");
    return false;
}

}  // namespace Tool
