// The report of a fit: residuals, left-out residuals and suspects, of random scans.

#include <Tellurion/BFitReport.h>

#include <benchmark/benchmark.h>

#include <random>

namespace {

using namespace Tellurion;

std::vector<BControlPoint> Scan(int count) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<> place(0, 4000);
    std::normal_distribution<> noise(0, 1);
    std::vector<BControlPoint> points(static_cast<std::size_t>(count));
    for (BControlPoint& point : points) {
        const double x = place(random);
        const double y = place(random);
        point.World = BPoint(4e5 + 2 * x + 0.1 * y, 5e6 + 0.1 * x - 2 * y, 0.0);
        point.Column = x + noise(random);
        point.Row = y + noise(random);
    }
    return points;
}

void Report(benchmark::State& state, EMathTransformType type, int count) {
    const std::vector<BControlPoint> points = Scan(count);
    for (auto _ : state)
        benchmark::DoNotOptimize(BFitReport::Make(type, points, 4000, 4000));
}

BENCHMARK_CAPTURE(Report, affine, EMathTransformType::Affine, 10000)
    ->Name("ours/report on an affine of 10000 points")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Report, spline, EMathTransformType::ThinPlateSpline, 1000)
    ->Name("ours/report on a spline of 1000 points")
    ->Unit(benchmark::kMillisecond);

}  // namespace
