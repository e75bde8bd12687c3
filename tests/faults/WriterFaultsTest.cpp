// Every writer meets failing calls and allocations: the caller hears of it, or the file
// is right.

#include "FaultRun.h"
#include "GdalFiles.h"
#include "PlainPdf.h"
#include "Roads.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace Tellurion;

struct Writer {
    const char* name;
    EReferenceType type;
    const char* file;
};
void PrintTo(const Writer& writer, std::ostream* out) {
    *out << writer.name;
}

class WriterFaults : public testing::TestWithParam<Writer> {
protected:
    /// The target as it is before the save, in a folder of its own.
    std::string Prepare(const TempFolder& folder) const {
        const std::string target = folder / GetParam().file;
        if (GetParam().type == EReferenceType::GeoTIFF) GdalFiles::MakeTiff(target);
        if (GetParam().type == EReferenceType::GeoPDF) folder.Write(GetParam().file, RichPdf(200, 100));
        return target;
    }
    FaultRun Save(const TempFolder& folder, const std::string& target, const Fault& fault) const {
        const TempFolder temporaries;
        return RunWithFault(SAVE_DRIVER, {std::to_string(static_cast<int>(GetParam().type)), target}, fault,
                            folder / "", temporaries / "");
    }
    static bool IsInPlace() {
        return GetParam().type == EReferenceType::GeoTIFF || GetParam().type == EReferenceType::GeoPDF;
    }
    /// True when what was saved comes back.
    bool IsRight(const std::string& target) const {
        BGeoReference back;
        if (!Roads::Read(GetParam().type, target, back).type.empty() || !back.HasMathTransform())
            return false;
        const BPoint world = back.MathTransform->ConvertSourceToTarget({200, 100, 0});
        return std::hypot(world.x - 676100, world.y - 5241950) < 1e-3;
    }
    /// One run under the fault; false when it did not strike.
    bool Meets(const Fault& fault) const {
        SCOPED_TRACE(std::string(fault.call) + " " + std::to_string(fault.number) + " " + fault.kind);
        const TempFolder folder;
        const std::string target = Prepare(folder);
        const FaultRun run = Save(folder, target, fault);
        EXPECT_TRUE(!run.SaysSaved() || IsRight(target)) << "a broken file, and nothing is said";
        // GDAL and Qt have allocations that they do not check; the target outlives that.
        const bool may_die = IsInPlace() && fault.call == std::string("malloc");
        EXPECT_TRUE(run.run.status <= 2 || may_die) << "a crash";
        if (run.SaysSaved()) return run.struck;
        EXPECT_TRUE(GetParam().type != EReferenceType::GeoTIFF || GdalFiles::Pixels(target).size() == 200)
            << "the raster is spoilt";
        if (run.run.status == 2) ExpectTold(run.run.out, fault, target);
        return run.struck;
    }
    void ExpectTold(const std::string& told, const Fault& fault, const std::string& target) const {
        EXPECT_FALSE(told.starts_with("unknown")) << told;
        if (fault.call != std::string("write")) return;
        EXPECT_TRUE(told.starts_with("BGeoReferenceWriteException")) << told;
        EXPECT_NE(told.find(target), std::string::npos) << told;
    }
};

TEST_P(WriterFaults, WritesAndClosesThatFail) {
    for (const Fault& fault :
         {Fault{"write", "EIO"}, {"write", "short"}, {"write", "disk-full"}, {"close", "EIO"}}) {
        long number = 1;
        while (number < 50 && Meets({fault.call, fault.kind, number}))
            ++number;
        EXPECT_GT(number, 1) << fault.kind << " never struck";
    }
    EXPECT_TRUE(Meets({"open", "EACCES", 1}));
}

TEST_P(WriterFaults, AllocationsThatFail) {
    for (const long number : {1, 15, 60, 250, 4000})
        if (!Meets({"malloc", "ENOMEM", number})) break;
}

INSTANTIATE_TEST_SUITE_P(All, WriterFaults,
                         testing::Values(Writer{"WLD", EReferenceType::WLD, "map.tfw"},
                                         Writer{"RSF", EReferenceType::RSF, "map.rsf"},
                                         Writer{"TAB", EReferenceType::TAB, "map.tab"},
                                         Writer{"ERS", EReferenceType::ERS, "map.ers"},
                                         Writer{"TIF", EReferenceType::GeoTIFF, "map.tif"},
                                         Writer{"PDF", EReferenceType::GeoPDF, "map.pdf"}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
