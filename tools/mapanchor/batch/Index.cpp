#include "batch/Index.h"

#include "batch/Cell.h"
#include "render/JsonRenderer.h"
#include "terminal/TargetFile.h"

#include <MapAnchor/BQuietGdal.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/BString.h>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Tool {

using MapAnchor::BQuietGdal;
using Tellurion::BFileUtilities;
using Tellurion::BString;

namespace {

[[noreturn]] void Fail(const std::string& file, std::string why) {
    why.resize(why.find_last_not_of('\n') + 1);  // some of GDAL's messages end so
    throw std::runtime_error("the index <" + file + "> " + why);
}

bool ServesExtension(GDALDriver& driver, const std::string& extension) {
    const char* extensions = driver.GetMetadataItem(GDAL_DMD_EXTENSIONS);
    std::istringstream words(extensions ? extensions : "");
    for (std::string word; words >> word;)
        if ("." + word == extension) return true;
    return false;
}

GDALDriver& DriverFor(const std::string& file) {
    GDALAllRegister();
    const std::string extension = BFileUtilities::GetExtension(BString(file)).ToLower().StdStr();
    for (int i = 0; i < GetGDALDriverManager()->GetDriverCount(); ++i) {
        GDALDriver& driver = *GetGDALDriverManager()->GetDriver(i);
        if (driver.GetMetadataItem(GDAL_DCAP_VECTOR) && driver.GetMetadataItem(GDAL_DCAP_CREATE) &&
            ServesExtension(driver, extension))
            return driver;
    }
    Fail(file, "is of no kind that GDAL can make here, such as .gpkg");
}

struct Column {
    const char* name;
    OGRFieldType type;
};

constexpr Column kColumns[] = {{"location", OFTString}, {"ok", OFTInteger},        {"type", OFTString},
                               {"epsg", OFTString},     {"columns", OFTInteger64}, {"rows", OFTInteger64},
                               {"error", OFTString}};

std::unique_ptr<OGRGeometry> AreaOf(const Json& feature) {
    if (feature["geometry"].is_null()) return nullptr;
    std::unique_ptr<OGRGeometry> area(
        OGRGeometryFactory::createFromGeoJson(feature["geometry"].dump().c_str()));
    return std::unique_ptr<OGRGeometry>(OGRGeometryFactory::forceToMultiPolygon(area.release()));
}

void SetText(OGRFeature& row, const char* column, const Json& properties, const char* key) {
    if (properties.contains(key)) row.SetField(column, properties[key].get<std::string>().c_str());
}

/// Some drivers write tables that are computed, and some put texts into CDATA as they are.
std::string LocationOf(const Json& properties) {
    BString location(CellText(NameIn(properties).value_or("")));
    return location.ReplaceAll("]]>", "]]\\x3e").StdStr();
}

/// True for a file that an earlier run made: one layer with the columns above.
bool IsIndex(const std::string& file, GDALDriver& driver) {
    const char* const drivers[] = {driver.GetDescription(), nullptr};
    const GDALDatasetUniquePtr dataset(
        GDALDataset::Open(file.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers));
    if (!dataset || dataset->GetLayerCount() != 1) return false;
    const OGRFeatureDefn& layer = *dataset->GetLayer(0)->GetLayerDefn();
    return std::all_of(std::begin(kColumns), std::end(kColumns),
                       [&layer](const Column& column) { return layer.GetFieldIndex(column.name) >= 0; });
}

/// What a run that was killed may have left of SQLite's work would be done to the new file.
void RemoveJournals(const std::string& file) {
    std::error_code ignored;
    for (const char* end : {"-journal", "-wal", "-shm"})
        std::filesystem::remove(file + end, ignored);
}

class GdalIndex final : public Index {
public:
    GdalIndex(const std::string& file, bool overwrite);
    void Add(const std::string& feature) override;
    void Close() override;
    std::string LeftOutText() const override;

private:
    void Commit();

    std::string file_;
    bool overwrite_;
    std::unique_ptr<FolderBeside> folder_;
    GDALDatasetUniquePtr dataset_;
    OGRLayer* layer_ = nullptr;  ///< the dataset's
    bool has_transactions_ = false;
    bool wants_areas_ = false;
    int uncommitted_ = 0;
    std::uint64_t left_out_ = 0;
};

GdalIndex::GdalIndex(const std::string& file, bool overwrite) : file_(file), overwrite_(overwrite) {
    const BQuietGdal quiet;
    std::error_code ignored;
    const bool exists = std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
    if (exists && !overwrite) throw std::runtime_error(ExistsText(file));
    GDALDriver& driver = DriverFor(file);
    if (exists && !IsIndex(file, driver))
        Fail(file, "is not an index of this tool and stays as it is; --index needs another name");
    // Its spatial index holds no row without an area: GDAL drops one in silence, newer versions fail.
    wants_areas_ = std::string_view(driver.GetDescription()) == "FlatGeobuf";
    folder_ = std::make_unique<FolderBeside>(file);
    dataset_.reset(driver.Create(folder_->NameInside().c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    OGRSpatialReference wgs84;
    wgs84.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    wgs84.importFromEPSG(4326);
    if (dataset_) layer_ = dataset_->CreateLayer("footprints", &wgs84, wkbMultiPolygon, nullptr);
    if (!layer_) Fail(file, "cannot be made: " + quiet.FirstFailure().StdStr());
    for (const Column& column : kColumns) {
        OGRFieldDefn field(column.name, column.type);
        if (layer_->CreateField(&field) != OGRERR_NONE)
            Fail(file, "cannot be made: " + quiet.FirstFailure().StdStr());
    }
    has_transactions_ =
        dataset_->TestCapability(ODsCTransactions) && dataset_->StartTransaction() == OGRERR_NONE;
}

void GdalIndex::Add(const std::string& feature) {
    const BQuietGdal quiet;
    const Json json = Json::parse(feature);
    if (wants_areas_ && json["geometry"].is_null()) {
        ++left_out_;
        return;
    }
    const Json& properties = json["properties"];
    OGRFeature row(layer_->GetLayerDefn());
    row.SetField("location", LocationOf(properties).c_str());
    row.SetField("ok", properties["ok"].get<bool>() ? 1 : 0);
    SetText(row, "type", properties, "referenceType");
    SetText(row, "epsg", properties, "epsg");
    if (properties.contains("size")) {
        row.SetField("columns", static_cast<GIntBig>(properties["size"][0].get<std::int64_t>()));
        row.SetField("rows", static_cast<GIntBig>(properties["size"][1].get<std::int64_t>()));
    }
    if (properties.contains("error")) SetText(row, "error", properties["error"], "type");
    row.SetGeometryDirectly(AreaOf(json).release());
    if (layer_->CreateFeature(&row) != OGRERR_NONE)
        Fail(file_, "cannot be written: " + quiet.FirstFailure().StdStr());
    constexpr int kRowsAtOnce = 1000;
    if (++uncommitted_ >= kRowsAtOnce) Commit();
}

void GdalIndex::Commit() {
    const BQuietGdal quiet;
    uncommitted_ = 0;
    if (!has_transactions_) return;
    if (dataset_->CommitTransaction() != OGRERR_NONE || dataset_->StartTransaction() != OGRERR_NONE)
        Fail(file_, "cannot be written: " + quiet.FirstFailure().StdStr());
}

void GdalIndex::Close() {
    const BQuietGdal quiet;
    if (has_transactions_ && dataset_->CommitTransaction() != OGRERR_NONE)
        Fail(file_, "cannot be written: " + quiet.FirstFailure().StdStr());
    dataset_.reset();
    if (!quiet.FirstFailure().StdStr().empty())
        Fail(file_, "cannot be written: " + quiet.FirstFailure().StdStr());
    if (overwrite_) RemoveJournals(file_);
    folder_->MoveOut(overwrite_);
}

std::string GdalIndex::LeftOutText() const {
    if (left_out_ == 0) return "";
    return std::to_string(left_out_) + (left_out_ == 1 ? " row has" : " rows have") +
           " no footprint and cannot be stored in <" + file_ + ">; an index of type .gpkg stores every row";
}

}  // namespace

std::unique_ptr<Index> MakeIndex(const std::string& file, bool overwrite) {
    return std::make_unique<GdalIndex>(file, overwrite);
}

}  // namespace Tool
