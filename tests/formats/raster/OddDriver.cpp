#include "OddDriver.h"

#include <gdal_priv.h>

#include <algorithm>
#include <string>

namespace {

class OddBand : public GDALRasterBand {
public:
    explicit OddBand(GDALDataset* owner) {
        poDS = owner;
        nBand = 1;
        eDataType = GDT_Byte;
        nBlockXSize = owner->GetRasterXSize();
        nBlockYSize = 1;
    }
    CPLErr IReadBlock(int, int, void* block) override {
        std::fill_n(static_cast<GByte*>(block), nBlockXSize, GByte{0});
        return CE_None;
    }
    CPLErr SetUnitType(const char*) override { return CE_None; }
};

class OddDataset : public GDALDataset {
public:
    OddDataset(std::string words, GDALAccess access) : words_(std::move(words)) {
        eAccess = access;
        nRasterXSize = 20;
        nRasterYSize = 10;
        SetBand(1, new OddBand(this));
        if (Has("no-memory")) CPLError(CE_Failure, CPLE_OutOfMemory, "not a byte left");
    }
    ~OddDataset() override {
        if (Has("no-close")) CPLError(CE_Failure, CPLE_FileIO, "the cable was pulled");
        if (Has("no-close")) CPLError(CE_Warning, CPLE_AppDefined, "said afterwards");
    }
    int GetGCPCount() override { return Has("lists-none") ? 3 : 0; }
    const GDAL_GCP* GetGCPs() override { return nullptr; }
    CPLErr SetGCPs(int, const GDAL_GCP*, const OGRSpatialReference*) override { return Answer("no-points"); }
#if GDAL_VERSION_NUM >= GDAL_COMPUTE_VERSION(3, 12, 0)
    CPLErr SetGeoTransform(const GDALGeoTransform&) override {
        return Answer("no-transform");
    }
#else
    CPLErr SetGeoTransform(double*) override {
        return Answer("no-transform");
    }
#endif
    CPLErr SetSpatialRef(const OGRSpatialReference*) override {
        return Answer("no-system");
    }

private:
    bool Has(const char* word) const {
        return words_.find(word) != std::string::npos;
    }
    CPLErr Answer(const char* refusal) const {
        return Has(refusal) ? CE_Failure : CE_None;
    }

    std::string words_;
};

std::string HeadOf(const GDALOpenInfo* info) {
    return {reinterpret_cast<const char*>(info->pabyHeader), static_cast<std::size_t>(info->nHeaderBytes)};
}

int Identify(GDALOpenInfo* info) {
    return HeadOf(info).starts_with("ODDRASTER");
}

GDALDataset* OpenOdd(GDALOpenInfo* info) {
    return Identify(info) ? new OddDataset(HeadOf(info), info->eAccess) : nullptr;
}

}  // namespace

void RegisterOddDriver() {
    GDALAllRegister();
    if (GetGDALDriverManager()->GetDriverByName("ODD")) return;
    auto* driver = new GDALDriver;
    driver->SetDescription("ODD");
    driver->SetMetadataItem(GDAL_DCAP_RASTER, "YES");
    driver->pfnIdentify = Identify;
    driver->pfnOpen = OpenOdd;
    GetGDALDriverManager()->RegisterDriver(driver);
}
