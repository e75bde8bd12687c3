#include "render/RasterFacts.h"
#include "render/Views.h"

#include "read/RemarkIds.h"
#include "read/Residuals.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>

namespace Tool {

using Tellurion::PrintFixed;
using Tellurion::PrintShortest;

namespace {

struct Fact {
    std::string name;
    std::string value;
};

/// Rounded to so many digits that count.
std::string Rounded(double value, int digits) {
    if (!(std::fabs(value) > 0.0) || !std::isfinite(value)) return PrintShortest(value);
    const int before = static_cast<int>(std::floor(std::log10(std::fabs(value)))) + 1;
    constexpr int kMaxDecimals = 15;
    const int decimals = std::min(std::max(digits - before, 0), kMaxDecimals);
    return PrintShortest(Tellurion::ParseDouble(PrintFixed(value, decimals)));
}

std::string SizeText(const PreviewSubject& subject) {
    const ReadResult& result = subject.result;
    if (!result.width) return "not known, see --size";
    return std::to_string(*result.width) + " by " + std::to_string(*result.height) + " pixels";
}

std::string CornerText(const PreviewSubject& subject, const Position& pixel) {
    const auto world = WorldAt(subject.result, pixel);
    if (!world) return "-";
    return RoundedText(world->x, subject.result) + ", " + RoundedText(world->y, subject.result);
}

std::string PixelText(const PixelFacts& facts) {
    constexpr int kDigits = 4;
    return Rounded(facts.width_metres, kDigits) + " by " + Rounded(facts.height_metres, kDigits) + " m";
}

std::string PointsText(const ReadResult& result) {
    const auto& pairs = result.reference.PointPairVector;
    const auto used = std::ranges::count_if(pairs, [](const auto& pair) { return pair.Enabled; });
    std::string text = std::to_string(pairs.size());
    if (used != static_cast<std::ptrdiff_t>(pairs.size())) text += ", " + std::to_string(used) + " used";
    return text;
}

std::string ResidualsText(const Residuals& residuals) {
    constexpr int kDigits = 3;
    if (*residuals.maximum < kSmallMiss) return "below " + PrintShortest(kSmallMiss) + " pixels";
    return Rounded(*residuals.root_mean_square, kDigits) + " pixels (RMS), at most " +
           Rounded(*residuals.maximum, kDigits);
}

std::vector<Fact> FactsOf(const PreviewSubject& subject) {
    std::vector<Fact> facts = {{"Size", SizeText(subject)}};
    if (const auto pixel = PixelFactsOf(subject.result)) facts.push_back({"Pixel", PixelText(*pixel)});
    if (const auto rotation = RotationOf(subject.result))
        if (std::fabs(*rotation) > 0.005) facts.push_back({"Rows turned by", PrintFixed(*rotation, 2) + "°"});
    if (subject.frame) {
        const RasterFrame& frame = *subject.frame;
        facts.push_back({"Upper left", CornerText(subject, frame.At(0, 0))});
        facts.push_back({"Upper right", CornerText(subject, frame.At(1, 0))});
        facts.push_back({"Lower right", CornerText(subject, frame.At(1, 1))});
        facts.push_back({"Lower left", CornerText(subject, frame.At(0, 1))});
        facts.push_back({"Middle", CornerText(subject, frame.At(0.5, 0.5))});
    } else if (subject.result.reference.HasMathTransform()) {
        facts.push_back({"Pixel 0, 0", CornerText(subject, {0.0, 0.0})});
    }
    if (const auto& area = subject.footprint) {
        facts.push_back({"Longitude", Rounded(area->west, 7) + "° to " + Rounded(area->east, 7) + "°"});
        facts.push_back({"Latitude", Rounded(area->south, 7) + "° to " + Rounded(area->north, 7) + "°"});
    }
    if (subject.result.reference.PointPairVector.empty()) return facts;
    facts.push_back({"Control points", PointsText(subject.result)});
    const Residuals residuals = ComputeResiduals(subject.result);
    if (residuals.root_mean_square) facts.push_back({"Residuals", ResidualsText(residuals)});
    return facts;
}

}  // namespace

double DrawFacts(Svg& svg, double left, double right, double top, const PreviewSubject& subject) {
    constexpr double kNames = 92.0;
    double at = top + kLine - 4;
    for (const Fact& fact : FactsOf(subject)) {
        svg.Text({left, at}, fact.name, "fact");
        svg.Text({left + kNames, at}, FittedText(fact.value, right - left - kNames), "label");
        at += kLine;
    }
    for (const Diagnostic& remark : subject.result.diagnostics) {
        if (remark.id != RemarkId::kNoFootprint) continue;
        const std::string why = remark.text.substr(remark.text.find(": ") + 1);
        svg.Text({left, at}, FittedText("No area:" + why, right - left), "label");
        at += kLine;
    }
    return at - top - kLine + 4;
}

}  // namespace Tool
