#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <cpl_minixml.h>

#include <memory>
#include <string>

namespace MapAnchor {

struct XmlTreeDeleter {
    void operator()(CPLXMLNode* tree) const { CPLDestroyXMLNode(tree); }
};
using XmlTree = std::unique_ptr<CPLXMLNode, XmlTreeDeleter>;

/// The whole of a file of at most 16 MiB as a tree; null for one that is no XML. GDAL reports
/// nothing of it.
XmlTree ReadXml(const Tellurion::BString& file);
std::string TextOfXml(const CPLXMLNode* tree);

/// Puts the reference's place under a PAMDataset or VRTDataset, in place of the one that is there:
/// the system, and the enabled control points or the affine.
void PutPlacement(const Tellurion::BGeoReference& reference, CPLXMLNode* dataset);

}  // namespace MapAnchor
