#include "modules/GdalModule.h"

#include "raster/gdal/AuxiliaryReference.h"
#include "raster/gdal/HasGdalDriver.h"
#include "raster/jp2/Jp2ByGdal.h"

#include <Tellurion/BUnsupportedFileTypeException.h>

/// What libMapAnchor calls where GDAL is in a module of its own. Without the module each call
/// fails and names it, except for questions that have an answer then.
namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BParamList;
using Tellurion::BString;
using Tellurion::ModuleOfGdal;

namespace {

const GdalModule& Gdal() {
    return *static_cast<const GdalModule*>(ModuleOfGdal().Functions());
}

/// The second reading is missing for a reason, which the proof states.
template <class Read>
std::optional<SecondReading> ReadOrRefuse(Read read, std::string& refusal) {
    try {
        return read();
    } catch (const Tellurion::BUnsupportedFileTypeException& error) {
        refusal = error.GetDetail().StdStr();
        return std::nullopt;
    }
}

}  // namespace

std::optional<GdalReference> ReadAuxiliaryReference(const BString& file) {
    return Gdal().read_auxiliary_reference(file);
}

std::string GdalDrivers::RefusedFor(const BString& file) {
    return ModuleOfGdal().IsThere() ? Gdal().refused_driver(file) : std::string();
}

void GdalDrivers::Allow(const BString& names) {
    Gdal().allow_drivers(names);
}

BString GdalDrivers::AllowedNames() {
    return ModuleOfGdal().FunctionsIfLoaded() ? Gdal().allowed_names() : BString();
}

void GdalDrivers::Scope::Enter(const BParamList& params) {
    (this->*Gdal().enter_scope)(params);
}

void GdalDrivers::Scope::Leave() {
    (this->*Gdal().leave_scope)();
}

bool HasGdalDriver(const char* name) {
    return ModuleOfGdal().IsThere() && Gdal().has_driver(name);
}

bool HasGdalSettings() {
    return Gdal().has_settings();
}

bool ReadRasterSize(const BString& file, long& width, long& height) {
    return Gdal().read_raster_size(file, width, height);
}

std::optional<GdalReference> ReadGdalReference(const BString& file, RasterKinds kinds, Sidecars sidecars) {
    return Gdal().read_reference(file, kinds, sidecars);
}

std::unique_ptr<QuietErrors> MakeQuietErrors() {
    return Gdal().make_quiet_errors();
}

std::optional<SecondReading> ReadByGdalAlone(const ReferenceFormat& kind, const BString& file,
                                             std::string& refusal) {
    return ReadOrRefuse([&] { return Gdal().read_by_gdal_alone(kind, file, refusal); }, refusal);
}

std::optional<SecondReading> ReadRasterByGdalAlone(const BString& raster, std::string& refusal) {
    return ReadOrRefuse([&] { return Gdal().read_raster_by_gdal_alone(raster, refusal); }, refusal);
}

std::vector<std::string> VirtualFiles::List(const std::string& folder, int limit) {
    return Gdal().list_virtual(folder, limit);
}

std::optional<std::string> VirtualFiles::Read(const BString& file, std::size_t limit) {
    return Gdal().read_virtual(file, limit);
}

VirtualFiles::Kind VirtualFiles::KindOf(const BString& file) {
    return Gdal().kind_of_virtual(file);
}

bool BRefGeoTIFF::Write(const BString& file, const BGeoReference& reference, const BParamList* params) {
    return Gdal().write_by_name(file, reference, params);
}

void BRefGeoTIFF::Write(const BString& file, const unsigned int& flags, const BGeoReference& reference,
                        const BParamList* params) {
    Gdal().write_by_type(file, flags, reference, params);
}

void AskGdalForJp2(const BString& path, bool overrules, Jp2Reference& out) {
    Gdal().ask_for_jp2(path, overrules, out);
}

std::optional<Thumbnail> MakeThumbnail(const BString& file, int max_width, int max_height,
                                       std::string& why_not) {
    try {
        return Gdal().make_thumbnail(file, max_width, max_height, why_not);
    } catch (const Tellurion::BUnsupportedFileTypeException& error) {
        why_not = error.GetDetail().StdStr();
        return std::nullopt;
    }
}

std::string TextOfAuxXml(const BString& file, const BGeoReference& reference) {
    return Gdal().text_of_aux_xml(file, reference);
}

std::string TextOfVrt(const BString& file, const BGeoReference& reference, const BString& imageName) {
    return Gdal().text_of_vrt(file, reference, imageName);
}

bool ParseKml(const BString& file, GroundOverlay& overlay, std::string& fault) {
    return Gdal().parse_kml(file, overlay, fault);
}

}  // namespace MapAnchor
