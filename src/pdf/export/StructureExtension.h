#pragma once

#include "load/CrossReferences.h"
#include "load/IncrementalUpdate.h"
#include "objects/CPDFDocument.h"

#include <Tellurion/BString.h>

namespace MapAnchor {

// What a save does with the logical structure that a file has: everything in it stays, and the
// top element gets one more kid, the element that names the coordinate system of a page.
//
//     StructTreeRoot -- K: top element -- K: [ kids of the file, element of ours ]
//                    -- ParentTree, RoleMap ... stay: the element has no content to be found by
//
// Where the root has several kids or none, the element is one of them.
//
// An element that an earlier save wrote for the page is renewed. A structure that is damaged stays
// as it is, with a warning to the log. Both return false for a file without a structure.

/// In a document that is going to be written whole. `page` is counted from 0.
bool ExtendStructure(VellumLib::CPDFDocument& document, int page, const Tellurion::BString& system_name);

/// As part of an update, which gets the objects that change. With `adds` no element is renewed,
/// since the page keeps its older maps.
bool ExtendStructure(VellumLib::IncrementalUpdate& update, VellumLib::CrossReferences& references,
                     VellumLib::FileWindow& file, const PoDoFo::PdfReference& page,
                     const Tellurion::BString& system_name, bool adds);

}  // namespace MapAnchor
