#include "sidecar/auxxml/AuxXmlText.h"

#include "raster/gdal/XmlTree.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BFileUtilities.h>
#include <Tellurion/RandomAccessFile.h>

namespace MapAnchor {

using namespace Tellurion;

namespace {

[[noreturn]] void RefuseWrite(const BString& file, const char* why) {
    throw BGeoReferenceWriteException("BRefAuxXml::Write",
                                      BString::Format("File <%ls> is not written: %s.", file, BString(why)));
}

bool IsNewOrEmpty(const BString& file) {
    return !BFileUtilities::Exists(file) || RandomAccessFile(file).Size() == 0;
}

/// The file that is there, or one with nothing in it.
XmlTree TreeFor(const BString& file) {
    if (IsNewOrEmpty(file)) return XmlTree(CPLCreateXMLNode(nullptr, CXT_Element, "PAMDataset"));
    XmlTree tree = ReadXml(file);
    if (!tree || !CPLGetXMLNode(tree.get(), "=PAMDataset"))
        RefuseWrite(file, "it is there, and is not an auxiliary file of GDAL; move it away first");
    return tree;
}

}  // namespace

std::string TextOfAuxXml(const BString& file, const BGeoReference& reference) {
    const XmlTree tree = TreeFor(file);
    PutPlacement(reference, CPLGetXMLNode(tree.get(), "=PAMDataset"));
    return TextOfXml(tree.get());
}

}  // namespace MapAnchor
