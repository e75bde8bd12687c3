// Every MrSID, ECW and JPEG 2000 file of the corpus: what its own header states, and
// for JPEG 2000 what GDAL's driver reports of the same file today.

#include "raster/mrsid/BRefMrSID.h"

#include <ogr_spatialref.h>

#include "Corpus.h"
#include "GdalFiles.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

TEST(HeaderCorpus, Ecw) {
    ForEachAnswer("ecw", [](const Path& file, const Json& answer) {
        BGeoReference named;
        const BGeoReference typed = Good(EReferenceType::ECW, file);
        const bool placed = answer.value("georeferenced", true);
        ASSERT_EQ(Roads::Read(file, named).type, placed ? "" : kUnsupported);
        ASSERT_EQ(typed.HasMathTransform(), placed);
        EXPECT_EQ(typed.HasCoordSys(), placed && answer["szProjection"] != "RAW");
        if (!placed) return;
        const auto number = [&](const char* key) { return answer[key].get<double>(); };
        const Six expected = {
            number("fCellIncrementX"), 0.0, number("fOriginX"), 0.0, -std::abs(number("fCellIncrementY")),
            number("fOriginY")};
        EXPECT_EQ(References::Terms(named), expected);
        EXPECT_EQ(References::Terms(typed), expected);
        if (file.filename() == "sample.ecw") {
            EXPECT_EQ(CodeOf(named), "EPSG:4326");
        }
    });
}

TEST(HeaderCorpus, MrSid) {
    ForEachAnswer("mrsid", [](const Path& file, const Json& answer) {
        const auto number = [&](const char* key) { return answer["LTIGeoCoord"][key].get<double>(); };
        const Six expected = {number("xRes"), number("xRot"), number("x"),
                              number("yRot"), number("yRes"), number("y")};
        BGeoReference strict;
        const BGeoReference named = Good(file);
        EXPECT_EQ(References::Terms(named), expected);
        EXPECT_EQ(References::Terms(Good(EReferenceType::MrSID, file, 0)), expected);
        EXPECT_EQ(named.HasCoordSys(), answer.contains("IMAGE::WKT"));
        const bool promised = !answer["GEOTIFF_NUM::3072::ProjectedCSTypeGeoKey"].is_null();
        EXPECT_EQ(Roads::Read(EReferenceType::MrSID, file, strict, Roads::kStrict).detail,
                  promised ? "Could not find EPSG system 32767." : "");
    });
}

/// Empty where no code names the system, or there is none. This file's differs from
/// GDAL's on purpose: the key as the file states it.
std::string ExpectedCode(const Path& file, GDALDataset& raster) {
    if (file.filename() == "bogota.jp2") return "EPSG:21892";
    const OGRSpatialReference* system = raster.GetSpatialRef();
    const char* code = system ? system->GetAuthorityCode(nullptr) : nullptr;
    return code ? std::string("EPSG:") + code : "";
}

// By name the affine is GDAL's; read by the MrSID class it is half a pixel inward.
void ExpectAsGdal(const Path& file) {
    SCOPED_TRACE(file);
    BGeoReference named, centre;
    double gt[6] = {};
    const GdalFiles::Dataset raster = GdalFiles::Open(file);
    EXPECT_TRUE(BRefMrSID::Read(BString(file.string()), centre) || !raster);
    const bool placed = raster && raster->GetGeoTransform(gt) == CE_None;
    // A bare code stream has no row at the entry point.
    const bool by_name = file.extension() == ".jp2";
    EXPECT_EQ(by_name && Roads::Read(file, named).type.empty(), placed);
    EXPECT_EQ(centre.HasMathTransform(), placed);
    if (!placed) return;
    const Six corner = TermsOfGdal({gt, gt + 6});
    EXPECT_EQ(References::Terms(named), corner);
    EXPECT_EQ(References::Terms(centre), Centred(corner));
    for (const BGeoReference& reference : {named, centre})
        EXPECT_EQ(reference.HasCoordSys() ? CodeOf(reference) : "", ExpectedCode(file, *raster));
}

TEST(HeaderCorpus, Jpeg2000) {
    const LogCapture log;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    for (const char* folder : {"jp2", "jp2gen"})
        for (const char* extension : {".jp2", ".j2k"})
            for (const Path& file : FilesOf(folder, extension))
                ExpectAsGdal(file);
    CPLPopErrorHandler();
}

}  // namespace
}  // namespace MapAnchor
