#include "Notations.h"

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/BMathTransform.h>

#include <gdal_priv.h>
#include <ogr_spatialref.h>

using namespace Tellurion;
using MapAnchor::BMapAnchor;

namespace sweep {
namespace {

namespace fs = std::filesystem;

constexpr int kSide = 10;
constexpr unsigned int kStrictCoordSys = 2;
thread_local std::string last_log;

using Reader = BCoordSys* (*)(const BString&);

Answer Refused(const std::string& reason) {
    Answer answer;
    answer.refused = true;
    answer.reason = reason;
    return answer;
}

Answer ReadBack(const BString& text, Reader read) {
    if (text.IsEmpty()) return Refused("no text");
    Answer answer;
    answer.back.reset(read(text));
    answer.text = text.StdStr();
    return answer;
}

Answer PassWkt(const BCoordSys& system, const fs::path&) {
    return ReadBack(system.ToWholeWKT(), BCoordSys::FromWKT);
}

Answer PassWkt2(const BCoordSys& system, const fs::path&) {
    return ReadBack(system.ToWKT2(), BCoordSys::FromWKT);
}

Answer PassProjJson(const BCoordSys& system, const fs::path&) {
    return ReadBack(system.ToPROJJSON(), [](const BString& text) { return BCoordSys::FromText(text); });
}

Answer PassEsri(const BCoordSys& system, const fs::path&) {
    return ReadBack(system.ToPRJ(), BCoordSys::FromWKT);
}

Answer PassPrjFile(const BCoordSys& system, const fs::path& folder) {
    const BString path((folder / "a.prj").string());
    if (!system.ToFile(path)) return Refused("not written");
    Answer answer;
    answer.back.reset(BCoordSys::FromFile(path));
    return answer;
}

BGeoReference ReferenceOn(const BCoordSys& system) {
    BGeoReference reference;
    const std::unique_ptr<BMathTransform> affine(BMathTransform::CreateAffine(1, 0, 10, 0, -1, 20, true));
    reference.SetMathTransform(*affine);
    reference.SetCoordSys(BSharedPtr<BCoordSys>(new BCoordSys(system)));
    return reference;
}

enum class Overload { ByType, ByName };

void Save(const BString& path, EReferenceType type, const BGeoReference& reference, Overload overload) {
    Tellurion::BParamList params;
    params.SetInteger(BMapAnchor::kValErsCodes, 1);
    if (overload == Overload::ByName)
        BMapAnchor::Save(path, reference, kSide, kSide, "map.tif", &params);
    else
        BMapAnchor::Save(type, path, reference, kSide, kSide, "map.tif", kStrictCoordSys, &params);
}

BGeoReference Read(const BString& path, EReferenceType type, Overload overload) {
    BGeoReference reference;
    BString used;
    if (overload == Overload::ByName)
        BMapAnchor::Read(path, reference, used, kSide, kSide, EMathTransformType::Affine, nullptr);
    else
        BMapAnchor::Read(type, path, reference, kSide, kSide, EMathTransformType::Affine, 0, nullptr);
    return reference;
}

Answer PassFile(const BCoordSys& system, const fs::path& path, EReferenceType type, Overload overload) {
    last_log.clear();
    try {
        const BString name(path.string());
        Save(name, type, ReferenceOn(system), overload);
        if (!last_log.empty()) return Refused(last_log);
        const BGeoReference back = Read(name, type, overload);
        Answer answer;
        if (back.HasCoordSys()) answer.back = std::make_unique<BCoordSys>(*back.CoordSys);
        answer.refused = !answer.back && type == EReferenceType::ERS;
        answer.reason = "no names written";
        return answer;
    } catch (const BException& error) {
        return Refused(error.GetDetailedMessage().StdStr());
    }
}

template <EReferenceType type, Overload overload>
Answer PassSidecar(const BCoordSys& system, const fs::path& folder) {
    const char* const extension = type == EReferenceType::RSF   ? "rsf"
                                  : type == EReferenceType::TAB ? "tab"
                                                                : "ers";
    return PassFile(system, folder / (std::string("map.") + extension), type, overload);
}

fs::path NewGeoTiff(const fs::path& folder) {
    const fs::path model = folder / "model.tiff";
    if (!fs::exists(model)) {
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        GDALClose(driver->Create(model.c_str(), kSide, kSide, 1, GDT_Byte, nullptr));
    }
    const fs::path path = folder / "map.tif";
    fs::copy_file(model, path, fs::copy_options::overwrite_existing);
    fs::remove(folder / "map.tif.aux.xml");
    return path;
}

/// Written by the library, read by GDAL alone.
Answer PassGeoTiffForGdal(const BCoordSys& system, const fs::path& folder) {
    const fs::path path = NewGeoTiff(folder);
    last_log.clear();
    try {
        Save(BString(path.string()), EReferenceType::GeoTIFF, ReferenceOn(system), Overload::ByType);
    } catch (const BException& error) {
        return Refused(error.GetDetailedMessage().StdStr());
    }
    if (!last_log.empty()) return Refused(last_log);
    Answer answer;
    const std::unique_ptr<GDALDataset> raster(GDALDataset::Open(path.c_str()));
    const OGRSpatialReference* read = raster ? raster->GetSpatialRef() : nullptr;
    if (!read) return answer;
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
    if (read->exportToWkt(&text, options) == OGRERR_NONE) answer.text = text;
    CPLFree(text);
    const char* issuer = read->GetAuthorityName(nullptr);
    const char* code = read->GetAuthorityCode(nullptr);
    if (issuer && code) answer.code = std::string(issuer) + ":" + code;
    // GDAL states no code for a compound system, but those of its parts.
    if (answer.code.empty() && read->IsCompound()) {
        const std::unique_ptr<BCoordSys> named(BCoordSys::FromWKT(BString(answer.text)));
        if (named) answer.code = named->ToEPSGCode().StdStr();
    }
    return answer;
}

Answer PassGeoTiff(const BCoordSys& system, const fs::path& folder) {
    return PassFile(system, NewGeoTiff(folder), EReferenceType::GeoTIFF, Overload::ByType);
}

}  // namespace

const std::vector<Notation>& Notations() {
    using enum EReferenceType;
    static const std::vector<Notation> notations = {
        {"WKT 1", PassWkt, true, true},
        {"WKT 2", PassWkt2},
        {"PROJJSON", PassProjJson},
        {"ESRI text", PassEsri, false},
        {"prj file", PassPrjFile, false},
        {"RSF", PassSidecar<RSF, Overload::ByType>},
        {"GeoTIFF", PassGeoTiff},
        {"GeoTIFF, read by GDAL", PassGeoTiffForGdal},
        {"TAB by type", PassSidecar<TAB, Overload::ByType>, false},
        {"TAB by name", PassSidecar<TAB, Overload::ByName>, false},
        {"ERS by type", PassSidecar<ERS, Overload::ByType>, false},
        {"ERS by name", PassSidecar<ERS, Overload::ByName>, false},
    };
    return notations;
}

void CollectLog() {
    BLogger::Instance()->SetSink([](ELogSeverity, const BString& text) { last_log = text.StdStr(); });
}

}  // namespace sweep
