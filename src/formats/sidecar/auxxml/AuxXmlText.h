#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <string>

namespace MapAnchor {

/// The content of the auxiliary file with the reference in place of the one that is there. A file
/// that is no auxiliary file ends in a BGeoReferenceWriteException.
std::string TextOfAuxXml(const Tellurion::BString& file, const Tellurion::BGeoReference& reference);

}  // namespace MapAnchor
