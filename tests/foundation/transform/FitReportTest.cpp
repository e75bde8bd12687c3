#include <Tellurion/BException.h>
#include <Tellurion/BFitReport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace Tellurion;

namespace {

constexpr unsigned int kWidth = 4000;
constexpr unsigned int kHeight = 3000;

/// Random scans of a map, each with a placement of its own and noisy clicks.
class Scans {
public:
    /// `bend` bends the paper by as many pixels; the first point is `gross` pixels off.
    std::vector<BControlPoint> Next(int count, double noise, double gross = 0.0, double bend = 0.0) {
        const double size = Between(0.5, 5);
        const double turn = Between(-3, 3);
        std::vector<BControlPoint> points(static_cast<std::size_t>(count));
        for (BControlPoint& point : points) {
            const double x = Between(0, kWidth);
            const double y = Between(0, kHeight);
            const double u = x + bend * std::sin(x / 800) * std::cos(y / 700);
            const double v = stretch * (y + bend * std::cos(x / 900) * std::sin(y / 600));
            point.World = BPoint(4e5 + size * (std::cos(turn) * u + std::sin(turn + shear) * v),
                                 5e6 + size * (std::sin(turn) * u - std::cos(turn + shear) * v), 0.0);
            point.Column = x + noise * normal_(random_);
            point.Row = y + noise * normal_(random_);
        }
        const double direction = Between(0, 6.28);
        points[0].Column += gross * std::cos(direction);
        points[0].Row += gross * std::sin(direction);
        return points;
    }
    double stretch = 1.05;
    double shear = 0.02;
    int Count(int least, int most) { return std::uniform_int_distribution<>(least, most)(random_); }

private:
    double Between(double least, double most) {
        return std::uniform_real_distribution<>(least, most)(random_);
    }

    std::mt19937_64 random_{1};
    std::normal_distribution<> normal_;
};

constexpr EMathTransformType kFits[] = {EMathTransformType::Affine,      EMathTransformType::Conformal,
                                        EMathTransformType::Polynomial2, EMathTransformType::Polynomial3,
                                        EMathTransformType::Projective,  EMathTransformType::ThinPlateSpline,
                                        EMathTransformType::Bilinear};

TEST(FitReport, LeftOutResidualsAreThoseOfSeparateFits) {
    Scans scans;
    for (const EMathTransformType type : kFits)
        for (int set = 0; set < 6; ++set) {
            const auto points = scans.Next(scans.Count(13, 30), 1.0, set % 2 ? 20.0 : 0.0);
            const BFitReport report = BFitReport::Make(type, points, kWidth, kHeight);
            for (std::size_t i = 0; i < points.size(); ++i) {
                auto others = points;
                others[i].Enabled = false;
                const BMathTransform fit = BMathTransform::Fit(type, others, kWidth, kHeight);
                double x = points[i].Column;
                double y = points[i].Row;
                ASSERT_TRUE(fit.ConvertSourceToTarget(x, y) && report.Residuals[i].HasLeftOut);
                const double dx = report.Residuals[i].LeftOutDx - (x - points[i].World.x);
                const double dy = report.Residuals[i].LeftOutDy - (y - points[i].World.y);
                // The coordinates themselves have 9e-10 between neighbours.
                ASSERT_LT(std::hypot(dx, dy), 3e-9) << static_cast<int>(type) << " point " << i;
            }
        }
}

TEST(FitReport, SuspectsAreTheGrossErrors) {
    Scans scans;
    constexpr int kSets = 1000;
    // A fit with fewer points has too little to spare to show which of them is wrong.
    for (const auto& [type, fewest] : {std::pair{EMathTransformType::Conformal, 8},
                                       {EMathTransformType::Affine, 8},
                                       {EMathTransformType::Projective, 8},
                                       {EMathTransformType::Polynomial2, 8},
                                       {EMathTransformType::Polynomial3, 12},
                                       {EMathTransformType::ThinPlateSpline, 8}}) {
        scans.stretch = type == EMathTransformType::Conformal ? 1.0 : 1.05;
        scans.shear = type == EMathTransformType::Conformal ? 0.0 : 0.02;
        int found = 0;
        int alarms = 0;
        for (int set = 0; set < kSets; ++set) {
            const int count = scans.Count(fewest, 50);
            const auto one = BFitReport::Make(type, scans.Next(count, 1.0, 20.0), kWidth, kHeight);
            found += one.Residuals[0].Suspect;
            const auto none = BFitReport::Make(type, scans.Next(count, 1.0), kWidth, kHeight);
            alarms += std::any_of(none.Residuals.begin(), none.Residuals.end(),
                                  [](const BFitResidual& residual) { return residual.Suspect; });
        }
        EXPECT_GE(found, kSets * 95 / 100) << static_cast<int>(type);
        EXPECT_LE(alarms, kSets / 50) << static_cast<int>(type);
    }
    // Three errors do not hide one another.
    auto points = scans.Next(30, 1.0, 40.0);
    points[1].Row += 40;
    points[2].Row += 38;
    const auto report = BFitReport::Make(EMathTransformType::Affine, points, kWidth, kHeight);
    for (std::size_t i = 0; i < points.size(); ++i)
        EXPECT_EQ(report.Residuals[i].Suspect, i < 3) << i;
}

TEST(FitReport, ChoosesTheSimplestFitThatIsNotWorse) {
    Scans scans;
    for (const auto& [bend, gross, expected] : {std::tuple{0.0, 0.0, EMathTransformType::Affine},
                                                {0.0, 20.0, EMathTransformType::Affine},
                                                {60.0, 0.0, EMathTransformType::ThinPlateSpline}}) {
        const auto points = scans.Next(40, 0.5, gross, bend);
        const auto alternatives = BFitReport::Compare(points, kWidth, kHeight);
        EXPECT_EQ(BFitReport::Choose(alternatives, points), expected) << bend << ' ' << gross;
        EXPECT_EQ(alternatives.size(), 6U);
    }
    auto few = scans.Next(3, 0.0);
    EXPECT_EQ(BFitReport::Choose(BFitReport::Compare(few, 0, 0), few), EMathTransformType::Affine);
    few.pop_back();
    EXPECT_EQ(BFitReport::Choose(BFitReport::Compare(few, 0, 0), few), EMathTransformType::Conformal);
    few.pop_back();
    EXPECT_THROW(BFitReport::Choose(BFitReport::Compare(few, 0, 0), few), BException);
}

BControlPoint At(double column, double row, double x, double y, bool enabled = true) {
    BControlPoint point;
    point.Column = column;
    point.Row = row;
    point.World = BPoint(x, y, 0.0);
    point.Enabled = enabled;
    return point;
}

TEST(FitReport, ReportsWhatIsKnownByHand) {
    // A step of 0.25 pixels at one corner of a square: every residual is a quarter of it.
    const std::vector<BControlPoint> square = {At(0.5, 0, 1, 100), At(100.5, 0, 201, 100),
                                               At(100.5, 50, 201, 0), At(0.5, 50, 1.5, 0),
                                               At(10.5, 5, 21, 86, false)};
    const auto report = BFitReport::Make(EMathTransformType::Affine, square, 200, 100);
    EXPECT_EQ(report.Used, 4);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(report.Residuals[i].Dx, i % 2 ? -0.125 : 0.125, 1e-12);
        EXPECT_NEAR(report.Residuals[i].LeftOut, 0.5, 1e-12) << i;
    }
    EXPECT_NEAR(report.Residuals[3].DxPixels, 0.0625, 1e-3);
    EXPECT_NEAR(report.Residuals[4].DyPixels, 2, 1e-3) << "the fit has the place two rows further down";
    EXPECT_FALSE(report.Residuals[4].HasLeftOut);
    EXPECT_NEAR(report.RmsePixels, 0.0625, 1e-3);
    EXPECT_NEAR(report.RmseAdjustedPixels, 2 * report.RmsePixels, 1e-9)
        << "two of eight coordinates are spare";
    EXPECT_NEAR(report.HullShare, 0.25, 1e-9);
    EXPECT_NEAR(report.Width, 0.5, 1e-9);
    EXPECT_FALSE(report.NearLine);
    EXPECT_NEAR(report.ScaleX, 1.9975, 1e-9);

    const auto exact =
        BFitReport::Make(EMathTransformType::Affine, {square.begin(), square.begin() + 3}, 0, 0);
    EXPECT_FALSE(exact.HasRmseAdjusted || exact.HasHullShare || exact.HasLeftOutRmse);
    EXPECT_EQ(exact.DescribeShape("m").StdStr(), "1 pixel is 2 by 2 m, not turned");
    const auto turned =
        BFitReport::Make(EMathTransformType::Conformal, {At(0, 0, 0, 0), At(10, 0, 0, 30)}, 0, 0);
    EXPECT_EQ(turned.DescribeShape("").StdStr(),
              "1 pixel is 3 by 3, turned by 90.000 degrees counterclockwise");
    const auto line = BFitReport::Make(EMathTransformType::Affine,
                                       {At(0, 0, 0, 0), At(100, 1, 100, 1), At(200, 10, 200, 10)}, 200, 100);
    EXPECT_TRUE(line.NearLine && line.Mirrored);
    EXPECT_THROW(BFitReport::Make(EMathTransformType::Affine, {At(0, 0, 0, 0)}, 0, 0), BException);
    EXPECT_THROW(BFitReport::Make(EMathTransformType::Affine, {At(NAN, 0, 0, 0), square[1], square[2]}, 0, 0),
                 BException);
}

}  // namespace
