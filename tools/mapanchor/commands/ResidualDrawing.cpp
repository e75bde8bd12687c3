#include "commands/GeoreferenceReport.h"
#include "read/Conversion.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>

namespace Tool {

using namespace Tellurion;

namespace {

constexpr double kWide = 720.0;  ///< of the drawing, with its margins
constexpr double kMargin = 60.0;
constexpr double kTall = 640.0;
constexpr double kLongestArrow = 50.0;
constexpr double kLetter = 6.6;  ///< the width of a letter of 11 pixels, rather too wide
constexpr double kLine = 14.0;

struct Box {
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    bool Meets(const Box& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};

std::string Number(double value) {
    return PrintFixed(value, 2);
}

/// 1, 2 or 5 times a power of ten, at most the value.
double RoundBelow(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double step : {5.0, 2.0})
        if (step * power <= value) return step * power;
    return power;
}

class Drawing {
public:
    explicit Drawing(const Georeferenced& made) : made_(made) {
        FindFrame();
        const double across = std::max(right_ - left_, 1e-9);
        const double down = std::max(bottom_ - top_, 1e-9);
        scale_ = std::min((kWide - 2 * kMargin) / across, kTall / down);
        height_ = down * scale_ + 2 * kMargin;
        for (const auto& residual : made.report->Residuals)
            if (residual.HasResidual) largest_ = std::max(largest_, residual.ResidualPixels);
        stretch_ = largest_ > 0 ? kLongestArrow / largest_ : 0.0;
    }

    std::string Draw() {
        std::string text = "<svg viewBox=\"0 0 " + Number(kWide) + " " + Number(height_ + 2 * kLine) +
                           "\" role=\"img\" aria-label=\"Residuals\">\n" + Outline();
        for (std::size_t i = 0; i < made_.points.size(); ++i)
            text += Point(i);
        for (std::size_t i = 0; i < made_.points.size(); ++i)
            text += Label(i);
        return text + ScaleOfArrows() + "</svg>\n";
    }

private:
    /// The raster or, where its size is not known, the points.
    void FindFrame() {
        if (made_.result.width) {
            right_ = static_cast<double>(*made_.result.width);
            bottom_ = static_cast<double>(*made_.result.height);
            return;
        }
        left_ = right_ = made_.points.front().Column;
        top_ = bottom_ = made_.points.front().Row;
        for (const BControlPoint& point : made_.points) {
            left_ = std::min(left_, point.Column);
            right_ = std::max(right_, point.Column);
            top_ = std::min(top_, point.Row);
            bottom_ = std::max(bottom_, point.Row);
        }
    }

    /// Points far outside the raster are drawn at its rim.
    Position On(double column, double row) const {
        return {std::clamp(kMargin + (column - left_) * scale_, 4.0, kWide - 4),
                std::clamp(kMargin + (row - top_) * scale_, 4.0, height_ - 4)};
    }

    std::string Outline() const {
        const Position corner = On(left_, top_);
        const Position other = On(right_, bottom_);
        return "<rect class=\"raster\" x=\"" + Number(corner.x) + "\" y=\"" + Number(corner.y) +
               "\" width=\"" + Number(other.x - corner.x) + "\" height=\"" + Number(other.y - corner.y) +
               "\"/>\n";
    }

    std::string Point(std::size_t i) {
        const BControlPoint& point = made_.points[i];
        const BFitResidual& residual = made_.report->Residuals[i];
        const Position at = On(point.Column, point.Row);
        const char* const style = !point.Enabled ? "unused" : residual.Suspect ? "suspect" : "point";
        std::string text = "<g class=\"" + std::string(style) + "\"><title>" + HtmlText(point.Name.StdStr()) +
                           "</title><circle cx=\"" + Number(at.x) + "\" cy=\"" + Number(at.y) +
                           "\" r=\"3.5\"/>";
        taken_.push_back({at.x - 4, at.y - 4, at.x + 4, at.y + 4});
        if (residual.HasResidual && residual.ResidualPixels > 0 && stretch_ > 0) {
            const double dx = residual.DxPixels * stretch_;
            const double dy = residual.DyPixels * stretch_;
            text += Arrow(at, dx, dy);
            taken_.push_back({at.x + std::min(dx, 0.0) - 2, at.y + std::min(dy, 0.0) - 2,
                              at.x + std::max(dx, 0.0) + 2, at.y + std::max(dy, 0.0) + 2});
        }
        return text + "</g>\n";
    }

    /// A line with a head, from the point to where the fit has its position.
    static std::string Arrow(const Position& from, double dx, double dy) {
        constexpr double kHead = 6.0;
        const double length = std::hypot(dx, dy);
        const double head = std::min(kHead, length);
        const double ux = dx / length;
        const double uy = dy / length;
        const Position tip{from.x + dx, from.y + dy};
        const auto side = [&](double way) {
            return Number(tip.x - head * ux + way * head * 0.45 * uy) + " " +
                   Number(tip.y - head * uy - way * head * 0.45 * ux);
        };
        return "<path class=\"shaft\" d=\"M" + Number(from.x) + " " + Number(from.y) + "L" + Number(tip.x) +
               " " + Number(tip.y) + "\"/><path class=\"head\" d=\"M" + Number(tip.x) + " " + Number(tip.y) +
               "L" + side(1) + "L" + side(-1) + "Z\"/>";
    }

    /// A name where no other name and no point is; the title of the point has it in any case.
    std::string Label(std::size_t i) {
        const std::string name = made_.points[i].Name.StdStr();
        constexpr std::size_t kLongest = 24;
        if (name.empty() || name.size() > kLongest) return {};
        const Position at = On(made_.points[i].Column, made_.points[i].Row);
        const double width = static_cast<double>(name.size()) * kLetter;
        for (const auto& [dx, dy] :
             {std::pair{7.0, 4.0}, {-7.0 - width, 4.0}, {-width / 2, -8.0}, {-width / 2, 17.0}}) {
            const Box box{at.x + dx, at.y + dy - kLine + 3, at.x + dx + width, at.y + dy + 3};
            const bool is_free = box.left > 0 && box.right < kWide && box.top > 0 && box.bottom < height_ &&
                                 std::none_of(taken_.begin(), taken_.end(),
                                              [&](const Box& other) { return box.Meets(other); });
            if (!is_free) continue;
            taken_.push_back(box);
            return "<text x=\"" + Number(at.x + dx) + "\" y=\"" + Number(at.y + dy) + "\">" + HtmlText(name) +
                   "</text>\n";
        }
        return {};
    }

    std::string ScaleOfArrows() const {
        if (!(stretch_ > 0) || !std::isfinite(stretch_)) return {};
        const double pixels = RoundBelow(largest_);
        const double y = height_ + kLine / 2;
        return "<g class=\"point\">" + Arrow({kMargin, y}, pixels * stretch_, 0) + "</g><text x=\"" +
               Number(kMargin + pixels * stretch_ + 10) + "\" y=\"" + Number(y + 4) + "\">" +
               PrintShortest(pixels) +
               " px of residual, from the point to where the fit has its position</text>\n";
    }

    const Georeferenced& made_;
    double left_ = 0.0;
    double top_ = 0.0;
    double right_ = 0.0;
    double bottom_ = 0.0;
    double scale_ = 1.0;
    double height_ = 0.0;
    double largest_ = 0.0;
    double stretch_ = 0.0;
    std::vector<Box> taken_;
};

}  // namespace

std::string DrawResiduals(const Georeferenced& made) {
    return Drawing(made).Draw();
}

}  // namespace Tool
