#include "sidecar/vrt/VrtText.h"

#include "raster/gdal/GdalRaster.h"
#include "raster/gdal/XmlTree.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/QuietGdal.h>

#include <cstring>

namespace MapAnchor {

using namespace Tellurion;

namespace {

[[noreturn]] void Refuse(const BString& file, const std::string& why) {
    throw BGeoReferenceWriteException("BRefVrt::Write",
                                      BString::Format("File <%ls> is not written: %ls.", file, BString(why)));
}

/// The raster's path as the program can open it.
BString PathOf(const BString& file, const BString& image) {
    const std::string name = image.StdStr();
    if (name.starts_with('/')) return image;
    const std::string target = file.StdStr();
    return BString(target.substr(0, target.rfind('/') + 1) + name);
}

/// What GDAL itself writes to wrap a raster: its size and bands, with their colours.
XmlTree WrapRaster(const BString& file, const BString& path) {
    const QuietGdal quiet;
    const GdalRaster raster = OpenRaster(path, RasterKinds::All, Sidecars::Hidden);
    if (!raster)
        Refuse(file, "GDAL does not open the raster <" + path.StdStr() + ">, whose size and bands it needs");
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("VRT");
    if (!driver) Refuse(file, "this GDAL has no driver for VRT");
    const GdalRaster copy(driver->CreateCopy("", raster.get(), FALSE, nullptr, nullptr, nullptr));
    const CSLConstList text = copy ? copy->GetMetadata("xml:VRT") : nullptr;
    XmlTree tree(text && *text ? CPLParseXMLString(*text) : nullptr);
    if (!tree || !CPLGetXMLNode(tree.get(), "=VRTDataset")) Refuse(file, "GDAL does not wrap the raster");
    return tree;
}

void SetAttribute(CPLXMLNode* element, const char* name, const char* value) {
    CPLSetXMLValue(element, (std::string("#") + name).c_str(), value);
}

/// Names the raster in all sources, from the place of the file.
void NameSources(CPLXMLNode* node, const std::string& name, bool is_relative) {
    for (CPLXMLNode* child = node->psChild; child; child = child->psNext) {
        if (child->eType != CXT_Element) continue;
        if (std::strcmp(child->pszValue, "SourceFilename") == 0) {
            CPLSetXMLValue(child, "", name.c_str());
            SetAttribute(child, "relativeToVRT", is_relative ? "1" : "0");
        } else {
            NameSources(child, name, is_relative);
        }
    }
}

}  // namespace

std::string TextOfVrt(const BString& file, const BGeoReference& reference, const BString& imageName) {
    const XmlTree tree = WrapRaster(file, PathOf(file, imageName));
    CPLXMLNode* const dataset = CPLGetXMLNode(tree.get(), "=VRTDataset");
    NameSources(dataset, imageName.StdStr(), !imageName.StdStr().starts_with('/'));
    PutPlacement(reference, dataset);
    return TextOfXml(tree.get());
}

}  // namespace MapAnchor
