#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/EMathTransformType.h>

namespace VellumLib {
class CPDFDocument;
}

namespace MapAnchor {

/// BRefGeoPDF::Read behind the opening of the file.
bool ReadGeoPDF(VellumLib::CPDFDocument& document, unsigned int flags, Tellurion::BGeoReference& reference,
                Tellurion::EMathTransformType mathType, long width, long height,
                const Tellurion::BParamList* params);

}  // namespace MapAnchor
