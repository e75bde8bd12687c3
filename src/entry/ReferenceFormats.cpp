#include "ReferenceFormats.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>

#include "BRefGeoPDF.h"
#include "raster/BRefADRG.h"
#include "raster/BRefCADRG.h"
#include "raster/BRefDOQQ.h"
#include "raster/BRefECW.h"
#include "raster/BRefGeoTIFF.h"
#include "raster/BRefKAP.h"
#include "raster/BRefMrSID.h"
#include "raster/HeaderReaders.h"
#include "sidecar/BRefERS.h"
#include "sidecar/BRefRSF.h"
#include "sidecar/BRefTAB.h"
#include "sidecar/BRefWLD.h"

#include <Tellurion/BImage.h>
#include <Tellurion/ReferenceTags.h>

#include <algorithm>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BImage;
using Tellurion::BParamList;
using Tellurion::BString;
using Tellurion::EMathTransformType;
using Tellurion::EReferenceType;
using Tellurion::REFERENCE_DOQ_TAG;
using Tellurion::REFERENCE_ECW_TAG;
using Tellurion::REFERENCE_ERS_TAG;
using Tellurion::REFERENCE_JP2_TAG;
using Tellurion::REFERENCE_KAP_TAG;
using Tellurion::REFERENCE_RSF_TAG;
using Tellurion::REFERENCE_SID_TAG;
using Tellurion::REFERENCE_TAB_TAG;
using Tellurion::REFERENCE_TIF_TAG;
using Tellurion::REFERENCE_TIFF_TAG;
using Tellurion::REFERENCE_WLD_TAG;

namespace {

bool ReadWorldFileByName(const ReadCall& call) {
    return BRefWLD::Read(call.file, call.reference);
}

bool ReadKapByName(const ReadCall& call) {
    return BRefKAP::Read(call.file, call.reference);
}

bool ReadCadrgByName(const ReadCall& call) {
    return BRefCADRG::Read(call.file, call.reference);
}

/// The name of the file beside counts only when that file answered.
bool ReadAdrgByName(const ReadCall& call) {
    BString used = *call.used_file;
    if (!BRefADRG::Read(call.file, call.reference, used)) return false;
    *call.used_file = used;
    return true;
}

ReferenceFormat GeoTiff() {
    return {
        .name = "TIF",
        .title = "GeoTIFF and other rasters that GDAL opens",
        .type = EReferenceType::GeoTIFF,
        .typed_read =
            [](const ReadCall& call) {
                BRefGeoTIFF::Read(call.file, call.flags, call.reference, call.width, call.height);
            },
        .typed_save = [](const SaveCall& call) { BRefGeoTIFF::Write(call.file, call.flags, call.reference); },
        .named_read =
            [](const ReadCall& call) {
                return BRefGeoTIFF::Read(call.file, call.reference, call.width, call.height);
            },
        .named_save = [](const SaveCall& call) { return BRefGeoTIFF::Write(call.file, call.reference); },
        .read_extensions = {REFERENCE_TIF_TAG.GetUnits(), REFERENCE_TIFF_TAG.GetUnits(), u".ddf", u".dem",
                            u".dt0", u".dt1", u".dt2", u".dt3", u".dt4", u".dt5", u".asc", u".adf"},
        .save_extensions = {REFERENCE_TIF_TAG.GetUnits(), REFERENCE_TIFF_TAG.GetUnits()}};
}

ReferenceFormat Rsf() {
    return {.name = "RSF",
            .title = "Control point sidecar",
            .type = EReferenceType::RSF,
            .typed_read =
                [](const ReadCall& call) {
                    BRefRSF::Read(call.file, call.flags, call.reference, call.math_type, call.width,
                                  call.height);
                },
            .typed_save =
                [](const SaveCall& call) {
                    BRefRSF::Write(call.file, call.flags, call.reference, call.width, call.height);
                },
            .named_read =
                [](const ReadCall& call) {
                    return BRefRSF::Read(call.file, call.reference, call.math_type, call.width, call.height);
                },
            .named_save =
                [](const SaveCall& call) {
                    return BRefRSF::Write(call.file, call.reference, call.width, call.height);
                },
            .read_extensions = {REFERENCE_RSF_TAG.GetUnits()},
            .save_extensions = {REFERENCE_RSF_TAG.GetUnits()}};
}

ReferenceFormat Tab() {
    return {
        .name = "TAB",
        .title = "MapInfo TAB raster registration",
        .type = EReferenceType::TAB,
        .typed_read =
            [](const ReadCall& call) {
                BRefTAB::Read(call.file, call.flags, call.reference, call.math_type, call.width, call.height);
            },
        .typed_save =
            [](const SaveCall& call) {
                BRefTAB::Write(call.file, call.flags, call.reference, call.width, call.height,
                               call.image_name);
            },
        .named_read =
            [](const ReadCall& call) {
                return BRefTAB::Read(call.file, call.reference, call.math_type, call.width, call.height);
            },
        .named_save =
            [](const SaveCall& call) {
                return BRefTAB::Write(call.file, call.reference, call.width, call.height, call.image_name);
            },
        .read_extensions = {REFERENCE_TAB_TAG.GetUnits()},
        .save_extensions = {REFERENCE_TAB_TAG.GetUnits()}};
}

ReferenceFormat Ers() {
    return {.name = "ERS",
            .title = "ER Mapper header",
            .type = EReferenceType::ERS,
            .typed_read = [](const ReadCall& call) { BRefERS::Read(call.file, call.flags, call.reference); },
            .typed_save =
                [](const SaveCall& call) {
                    BRefERS::Write(call.file, call.flags, call.reference, call.width, call.height,
                                   call.image_name);
                },
            .named_read = [](const ReadCall& call) { return BRefERS::Read(call.file, call.reference); },
            .named_save =
                [](const SaveCall& call) {
                    return BRefERS::Write(call.file, call.reference, call.width, call.height,
                                          call.image_name);
                },
            .read_extensions = {REFERENCE_ERS_TAG.GetUnits()},
            .save_extensions = {REFERENCE_ERS_TAG.GetUnits()}};
}

ReferenceFormat WorldFileFormat() {
    ReferenceFormat format{
        .name = "WLD",
        .title = "World file",
        .type = EReferenceType::WLD,
        .typed_read = [](const ReadCall& call) { BRefWLD::Read(call.file, call.flags, call.reference); },
        .typed_save = [](const SaveCall& call) { BRefWLD::Write(call.file, call.flags, call.reference); },
        .named_read = ReadWorldFileByName,
        .named_save = [](const SaveCall& call) { return BRefWLD::Write(call.file, call.reference); },
        .read_extensions = {REFERENCE_WLD_TAG.GetUnits(), u".tifw", u".jgw", u".jpgw", u".pgw", u".bpw",
                            u".eww", u".sdw", u".wld", u".blw", u".gfw"},
        .save_extensions = {}};
    format.save_extensions = format.read_extensions;
    // Saved like the others, but not read by name: there the content decides.
    format.save_extensions.insert(format.save_extensions.end(), {u".j2w", u".kpw"});
    return format;
}

ReferenceFormat Sid() {
    return {
        .name = "SID",
        .title = "MrSID",
        .type = EReferenceType::MrSID,
        .typed_read = [](const ReadCall& call) { BRefMrSID::Read(call.file, call.flags, call.reference); },
        .named_read = [](const ReadCall& call) { return BRefMrSID::Read(call.file, call.reference); },
        .centre_anchored = true,
        .refusal = {"BrefMrSID::Write", "MrSID raster image files canot be writen using this method."},
        .served_by = HeaderReaders::MrSid(),
        .missing = HeaderReaders::MissingForMrSid,
        .read_extensions = {REFERENCE_SID_TAG.GetUnits()}};
}

ReferenceFormat Ecw() {
    return {.name = "ECW",
            .title = "ECW",
            .type = EReferenceType::ECW,
            .typed_read = [](const ReadCall& call) { BRefECW::Read(call.file, call.flags, call.reference); },
            .named_read = [](const ReadCall& call) { return BRefECW::Read(call.file, call.reference); },
            .refusal = {"BrefECW::Write", "ECW raster image files canot be writen using this method."},
            .served_by = HeaderReaders::Ecw(),
            .read_extensions = {REFERENCE_ECW_TAG.GetUnits()}};
}

/// The ECW reader states the corner of the first pixel, so that is this kind's anchor;
/// what only the MrSID reader can tell, such as a rotated image, starts at its centre
/// and is told as of that kind.
ReferenceFormat Jp2() {
    return {.name = "JP2",
            .title = "JPEG 2000",
            .type = EReferenceType::Reserved,
            .named_read = [](const ReadCall& call) { return BRefECW::Read(call.file, call.reference); },
            .second_reader = "SID",
            .served_by = HeaderReaders::Jpeg2000(),
            .missing = HeaderReaders::MissingForJpeg2000,
            .read_extensions = {REFERENCE_JP2_TAG.GetUnits()}};
}

ReferenceFormat GeoPdfFormat() {
    return {.name = "PDF",
            .title = "Geospatial PDF",
            .type = EReferenceType::GeoPDF,
            // False is no failure by type: the reference says what there is, and the log
            // where a PDF that was not written stands.
            .typed_read =
                [](const ReadCall& call) {
                    BRefGeoPDF::Read(call.file, call.flags, call.reference, call.math_type, call.width,
                                     call.height, call.params);
                },
            .typed_save =
                [](const SaveCall& call) {
                    BRefGeoPDF::Write(call.file, call.reference, call.width, call.height, call.params);
                }};
}

std::vector<ReferenceFormat> MakeTable() {
    return {
        Rsf(),
        WorldFileFormat(),
        GeoTiff(),
        Tab(),
        Ers(),
        {.name = "DOQ",
         .title = "Digital orthophoto quadrangle header",
         .type = EReferenceType::DOQQ,
         .typed_read = [](const ReadCall& call) { BRefDOQQ::Read(call.file, call.flags, call.reference); },
         .named_read = [](const ReadCall& call) { return BRefDOQQ::Read(call.file, call.reference); },
         .refuses_typed_read = true,
         .refusal = BRefDOQQ::kSaveRefusal,
         .read_extensions = {REFERENCE_DOQ_TAG.GetUnits()}},
        {.name = "KAP",
         .title = "BSB nautical chart header",
         .type = EReferenceType::KAP,
         .typed_read = [](const ReadCall& call) { BRefKAP::Read(call.file, call.flags, call.reference); },
         .named_read = ReadKapByName,
         .refusal = BRefKAP::kSaveRefusal,
         .read_extensions = {REFERENCE_KAP_TAG.GetUnits()}},
        Sid(),
        Ecw(),
        Jp2(),
        {.name = "CADRG", .title = "CADRG frame", .type = EReferenceType::Reserved, .centre_anchored = true},
        {.name = "ADRG",
         .title = "ADRG distribution rectangle",
         .type = EReferenceType::Reserved,
         .centre_anchored = true},
        GeoPdfFormat(),
    };
}

bool Holds(const std::vector<std::u16string_view>& extensions, std::u16string_view extension) {
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

template <class Matches>
const ReferenceFormat* FindFormat(Matches matches) {
    const auto& table = ReferenceFormatTable();
    const auto found = std::find_if(table.begin(), table.end(), matches);
    return found == table.end() ? nullptr : &*found;
}

std::vector<BString> Texts(const std::vector<std::u16string_view>& extensions) {
    std::vector<BString> texts;
    texts.reserve(extensions.size());
    for (const auto extension : extensions)
        texts.emplace_back(std::u16string(extension));
    return texts;
}

BReferenceFormat Describe(const ReferenceFormat& format) {
    BReferenceFormat out;
    out.Name = format.name;
    out.Title = format.title;
    out.Type = format.type;
    out.HasType = format.type != EReferenceType::Reserved;
    out.ReadsByType = format.typed_read && !format.refuses_typed_read;
    out.CentreAnchored = format.centre_anchored;
    out.SavesByType = format.typed_save != nullptr;
    out.ServedBy = format.served_by;
    if (format.missing) out.Missing = format.missing();
    if (format.named_read) out.ReadExtensions = Texts(format.read_extensions);
    if (format.named_save) out.SaveExtensions = Texts(format.save_extensions);
    const auto& probes = ReferenceProbeTable();
    out.Probed =
        std::any_of(probes.begin(), probes.end(), [&](const auto& probe) { return probe.name == out.Name; });
    return out;
}

}  // namespace

const std::vector<ReferenceFormat>& ReferenceFormatTable() {
    static const std::vector<ReferenceFormat> table = MakeTable();
    return table;
}

const std::vector<ReferenceProbe>& ReferenceProbeTable() {
    static const std::vector<ReferenceProbe> probes = {
        {.name = "CADRG", .may_be = BImage::CheckIfCADRGReader, .read = ReadCadrgByName},
        {.name = "ADRG", .may_be = BImage::CheckIfADRGReader, .read = ReadAdrgByName},
        {.name = "WLD", .read = ReadWorldFileByName},
        {.name = "KAP", .read = ReadKapByName},
    };
    return probes;
}

bool IsPlainRasterExtension(std::u16string_view extension) {
    static constexpr std::u16string_view kPlain[] = {u".jpg", u".jpeg", u".png", u".bmp",
                                                     u".bsq", u".bil",  u".gif"};
    return std::find(std::begin(kPlain), std::end(kPlain), extension) != std::end(kPlain);
}

const ReferenceFormat* FindFormatByType(EReferenceType type) {
    if (type == EReferenceType::Reserved) return nullptr;
    return FindFormat([type](const auto& format) { return format.type == type; });
}

const ReferenceFormat* FindFormatToRead(std::u16string_view extension) {
    return FindFormat([extension](const auto& format) { return Holds(format.read_extensions, extension); });
}

const ReferenceFormat* ReadByName(const ReferenceFormat& format, const ReadCall& call) {
    if (!format.named_read) return nullptr;
    if (format.named_read(call)) return &format;
    const std::string_view second = format.second_reader ? format.second_reader : "";
    const ReferenceFormat* other = FindFormat([second](const auto& row) { return row.name == second; });
    return other && other->named_read(call) ? other : nullptr;
}

const ReferenceFormat* FindFormatToSave(std::u16string_view extension) {
    return FindFormat([extension](const auto& format) { return Holds(format.save_extensions, extension); });
}

std::vector<BReferenceFormat> BReferenceFormats::List() {
    std::vector<BReferenceFormat> list;
    for (const ReferenceFormat& format : ReferenceFormatTable()) {
        BReferenceFormat described = Describe(format);
        const bool served = described.ReadsByType || described.SavesByType || described.Probed ||
                            !described.ReadExtensions.empty() || !described.SaveExtensions.empty();
        if (served) list.push_back(std::move(described));
    }
    return list;
}

BString BReferenceFormats::Read(const BString& file, BGeoReference& reference, BString& usedFile, long width,
                                long height, EMathTransformType mathType, const BParamList* params) {
    return BMapAnchor::ReadAndName(file, reference, usedFile, width, height, mathType, params);
}

}  // namespace MapAnchor
