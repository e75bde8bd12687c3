#pragma once

#include "wide/WideDocument.h"

#include <Tellurion/BParamList.h>

namespace MapAnchor {

/// The page that the host asks for, counted from 1; the first without a wish.
long PageOf(const Tellurion::BParamList* params);
/// What opens an encrypted file; empty without a wish.
std::string PasswordOf(const Tellurion::BParamList* params);
/// A BReadParametersException for a page that the document does not have.
VellumLib::WidePage PageAt(const VellumLib::WidePages& pages, long number);
/// The index of the map that the host asks for, or of the one that is read without a wish. A
/// BReadParametersException for a map that the page does not have.
std::size_t ChooseMap(VellumLib::WideDocument& document, const VellumLib::WidePage& page, long number,
                      const std::vector<VellumLib::WideMap>& maps, const Tellurion::BParamList* params);

}  // namespace MapAnchor
