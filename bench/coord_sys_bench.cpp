// Coordinate systems by the names of ER Mapper headers and back, warm and cold. The
// walk is the search through all projected systems that the look-up replaces. Cold
// starts are a program's first call; run with --benchmark_filter=Cold in a program of
// their own.

#include "lookups/CoordSysLookups.h"

#include <GeoCalc/CDataSource.h>
#include <Tellurion/BCoordSys.h>

#include "BenchFiles.h"

namespace {

using GeoCalc::CS::CProjectedCoordSys;
using GeoCalc::DB::CDataSource;
using namespace Tellurion;
using bench::Who;

/// The first look-up of a process makes the index.
void ColdIndex(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(CDataSource::Instance().FindERMapperName({}));
}

/// The first name of a process reads the list of EPSG systems too.
void ColdFindERMapperCoordSys(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(MapAnchor::FindERMapperCoordSys("NUTM12", "NAD27", 4));
}

void FindERMapperCoordSys(benchmark::State& state, const char* projection, const char* datum, int units) {
    MapAnchor::FindERMapperCoordSys(projection, datum, units);
    for (auto _ : state)
        benchmark::DoNotOptimize(MapAnchor::FindERMapperCoordSys(projection, datum, units));
}

BSharedPtr<BCoordSys> System(const char* code) {
    return BSharedPtr<BCoordSys>(BCoordSys::FromEPSGCode(code));
}

void GetERMapperProjectionName(benchmark::State& state) {
    const auto system = System("28355");
    BString name;
    for (auto _ : state)
        benchmark::DoNotOptimize(MapAnchor::GetERMapperProjectionName(name, system));
}

/// With a system that was not asked before, as each file brings its own.
void GetERMapperProjectionNameOfANewSystem(benchmark::State& state) {
    BString name;
    for (auto _ : state)
        benchmark::DoNotOptimize(MapAnchor::GetERMapperProjectionName(name, System("28355")));
}

void WalkThroughAllSystems(benchmark::State& state) {
    const auto system = System("28355");
    const auto& wanted = dynamic_cast<const CProjectedCoordSys&>(*system->GetGCCoordSys()).GetProjection();
    const auto objects = CDataSource::Instance().Search(CDataSource::kProjectedCoordSys);
    for (auto _ : state)
        for (const auto& object : objects) {
            const auto& projection = dynamic_cast<const CProjectedCoordSys&>(*object).GetProjection();
            if (projection.GetKind() == wanted.GetKind() && projection.IsNearlyEqual(wanted) &&
                object->GetIdentifiers().Exists("ERMapper"))
                break;
        }
}

[[maybe_unused]] const bool kAdded = [] {
    bench::Add(Who::Ours, "first look-up of an ER Mapper name", ColdIndex)->Iterations(1);
    bench::Add(Who::Ours, "first ER Mapper system", ColdFindERMapperCoordSys)->Iterations(1);
    bench::Add(Who::Ours, "find ER Mapper system on its own datum", FindERMapperCoordSys, "NUTM12", "WGS84",
               4);
    bench::Add(Who::Ours, "find ER Mapper system on another datum", FindERMapperCoordSys, "NUTM12", "NAD27",
               4);
    bench::Add(Who::Ours, "find ER Mapper system that was stored", FindERMapperCoordSys, "NUTM31", "ED50FRA",
               3);
    bench::Add(Who::Ours, "find geodetic ER Mapper system", FindERMapperCoordSys, "GEODETIC", "WGS84", 4);
    bench::Add(Who::Ours, "name a projection of ER Mapper", GetERMapperProjectionName);
    bench::Add(Who::Ours, "name a projection of a new ER Mapper system",
               GetERMapperProjectionNameOfANewSystem);
    bench::Add(Who::Walk, "name a projection of ER Mapper", WalkThroughAllSystems);
    return true;
}();

}  // namespace
