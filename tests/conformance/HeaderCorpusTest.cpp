// Every MrSID, ECW and JPEG 2000 file of the corpus: what its own header states, and
// for JPEG 2000 what GDAL's driver says of the same file today.

#include "raster/BRefMrSID.h"

#include <ogr_spatialref.h>

#include "Corpus.h"
#include "GdalFiles.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

/// The systems that the names in the headers stand for.
const std::map<std::string, std::string> kEcwCodes = {{"jrc.ecw", "none"}, {"sample.ecw", "EPSG:4326"}};

TEST(HeaderCorpus, Ecw) {
    ForEachAnswer("ecw", [](const std::filesystem::path& file, const Json& answer) {
        BGeoReference named, typed;
        ASSERT_EQ(Roads::Read(EReferenceType::ECW, file, typed, Roads::kStrict).type, "");
        const bool placed = answer.value("georeferenced", true);
        ASSERT_EQ(Roads::Read(file, named).type, placed ? "" : kUnsupported);
        ASSERT_EQ(typed.HasMathTransform(), placed);
        if (!placed) {
            EXPECT_FALSE(typed.HasCoordSys());
            return;
        }
        const auto number = [&](const char* key) { return answer[key].get<double>(); };
        const Six expected = {
            number("fCellIncrementX"), 0.0, number("fOriginX"), 0.0, -std::abs(number("fCellIncrementY")),
            number("fOriginY")};
        EXPECT_EQ(References::Terms(named), expected);
        EXPECT_EQ(References::Terms(typed), expected);
        if (const auto code = kEcwCodes.find(file.filename()); code != kEcwCodes.end()) {
            EXPECT_EQ(CodeOf(named), code->second);
        }
        EXPECT_EQ(named.HasCoordSys(), answer["szProjection"] != "RAW");
    });
}

TEST(HeaderCorpus, MrSid) {
    ForEachAnswer("mrsid", [](const std::filesystem::path& file, const Json& answer) {
        const auto number = [&](const char* key) { return answer["LTIGeoCoord"][key].get<double>(); };
        const Six expected = {number("xRes"), number("xRot"), number("x"),
                              number("yRot"), number("yRes"), number("y")};
        BGeoReference named, typed;
        ASSERT_EQ(Roads::Read(file, named).type, "");
        EXPECT_EQ(References::Terms(named), expected);
        EXPECT_EQ(named.HasCoordSys(), answer.contains("IMAGE::WKT"));
        const bool promised = !answer["GEOTIFF_NUM::3072::ProjectedCSTypeGeoKey"].is_null();
        EXPECT_EQ(Roads::Read(EReferenceType::MrSID, file, typed, Roads::kStrict).detail,
                  promised ? "Could not find EPSG system 32767." : "");
        ASSERT_EQ(Roads::Read(EReferenceType::MrSID, file, typed).type, "");
        EXPECT_EQ(References::Terms(typed), expected);
    });
}

/// What GDAL says of a file, in the order of the affine's terms.
struct GdalAnswer {
    bool opened = false;
    bool placed = false;
    Six corner{};
    std::string code;  ///< of the whole system, as its text states it
};

GdalAnswer AskGdal(const std::string& path) {
    GdalAnswer answer;
    const GdalFiles::Dataset raster = GdalFiles::Open(path);
    if (!raster) return answer;
    answer.opened = true;
    double gt[6] = {};
    answer.placed = raster->GetGeoTransform(gt) == CE_None;
    answer.corner = {gt[1], gt[2], gt[0], gt[4], gt[5], gt[3]};
    const OGRSpatialReference* system = raster->GetSpatialRef();
    const char* code = system ? system->GetAuthorityCode(nullptr) : nullptr;
    if (code) answer.code = std::string("EPSG:") + code;
    return answer;
}

/// Codes that differ from GDAL's on purpose: the key as the file states it.
const std::map<std::string, std::string> kKeyAsStated = {{"bogota.jp2", "EPSG:21892"}};

/// Empty for none as well as for a system that no code names.
std::string KnownCode(const BGeoReference& reference) {
    return reference.HasCoordSys() ? CodeOf(reference) : "";
}

class Jpeg2000Corpus : public testing::TestWithParam<const char*> {};

// By name the affine is GDAL's; read by the MrSID class it lies half a pixel inward.
TEST_P(Jpeg2000Corpus, EqualsGdalOrLiesHalfAPixelInward) {
    const LogCapture log;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    for (const auto& entry : std::filesystem::directory_iterator(kCorpus / GetParam())) {
        if (entry.path().extension() != ".jp2" && entry.path().extension() != ".j2k") continue;
        const std::string file = entry.path().string();
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        const GdalAnswer gdal = AskGdal(file);
        BGeoReference centre;
        const bool opened = BRefMrSID::Read(BString(file), centre);
        EXPECT_TRUE(opened || !gdal.opened);
        BGeoReference named;
        // A bare code stream has no row at the front door.
        const bool by_name = entry.path().extension() == ".jp2";
        const bool read = by_name && Roads::Read(file, named).type.empty();
        EXPECT_EQ(read, gdal.placed);
        EXPECT_EQ(centre.HasMathTransform(), gdal.placed);
        if (!gdal.placed) continue;
        EXPECT_EQ(References::Terms(named), gdal.corner);
        EXPECT_EQ(References::Terms(centre), Centred(gdal.corner));
        const auto stated = kKeyAsStated.find(name);
        const std::string code = stated == kKeyAsStated.end() ? gdal.code : stated->second;
        EXPECT_EQ(KnownCode(named), code);
        EXPECT_EQ(KnownCode(centre), code);
    }
    CPLPopErrorHandler();
}

INSTANTIATE_TEST_SUITE_P(Folders, Jpeg2000Corpus, testing::Values("jp2", "jp2gen"),
                         [](const auto& folder) { return std::string(folder.param); });

}  // namespace
}  // namespace MapAnchor
