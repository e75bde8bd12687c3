#pragma once

#include <MapAnchor/BDiagnostic.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>

#include <vector>

/// What the classes of the installed headers call, so that their symbols stay in libMapAnchor
/// while PoDoFo and Qt are in a module.
namespace MapAnchor {

class BGeoPDFPage;
class BGeoPDFPages;
class BGeoPDFTraits;

BGeoPDFPage DescribeFirstPage(const Tellurion::BString& file);
BGeoPDFPages ListPages(const Tellurion::BString& file);
BGeoPDFPages DescribePage(const Tellurion::BString& file, const Tellurion::BParamList* params);
BGeoPDFTraits TraitsOfFile(const Tellurion::BString& file);
std::vector<BDiagnostic> CheckFile(const Tellurion::BString& file);

}  // namespace MapAnchor
