#include "raster/geotiff/AuxiliaryXml.h"

#include <cpl_conv.h>
#include <cpl_minixml.h>

#include <cstring>
#include <initializer_list>
#include <memory>

namespace MapAnchor {
namespace {

/// Larger auxiliary files exist, but hold tables of attributes and no place.
constexpr std::uint64_t kMaxLength = std::uint64_t{16} << 20;

struct TreeDeleter {
    void operator()(CPLXMLNode* tree) const { CPLDestroyXMLNode(tree); }
};
using Tree = std::unique_ptr<CPLXMLNode, TreeDeleter>;

struct TextDeleter {
    void operator()(char* text) const { CPLFree(text); }
};

bool RemoveChild(CPLXMLNode* parent, const char* name) {
    CPLXMLNode* const child = CPLGetXMLNode(parent, name);
    if (!child || !CPLRemoveXMLChild(parent, child)) return false;
    CPLDestroyXMLNode(child);
    return true;
}

}  // namespace

std::string AuxiliaryXmlOf(const StagingFolder& folder) {
    return folder.NameOfRaster() + ".aux.xml";
}

namespace {

bool RemoveElements(StagingFolder& folder, std::initializer_list<const char*> names) {
    StagedFile* const file = folder.Open(AuxiliaryXmlOf(folder), StagedFile::Access::Update);
    if (!file || file->Length() > kMaxLength) return false;
    const Tree tree(CPLParseXMLString(file->Bytes(0, static_cast<std::size_t>(file->Length())).c_str()));
    CPLXMLNode* const dataset = tree ? CPLGetXMLNode(tree.get(), "=PAMDataset") : nullptr;
    if (!dataset) return false;
    bool removed = false;
    for (const char* name : names)
        removed = RemoveChild(dataset, name) || removed;
    if (!removed) return false;
    const std::unique_ptr<char, TextDeleter> text(CPLSerializeXMLTree(tree.get()));
    file->Truncate(0);
    file->WriteAt(0, {text.get(), std::strlen(text.get())});
    return true;
}

}  // namespace

bool RemovePlaceFromAuxiliaryXml(StagingFolder& folder) {
    return RemoveElements(folder, {"GeoTransform", "GCPList"});
}

bool RemoveSystemFromAuxiliaryXml(StagingFolder& folder) {
    return RemoveElements(folder, {"SRS"});
}

}  // namespace MapAnchor
