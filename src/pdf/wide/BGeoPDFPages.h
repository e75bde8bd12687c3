#pragma once

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/Export.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// A page that was looked at, by its number.
struct MAPANCHOR_EXPORT BGeoPDFNumberedPage {
    long Number = 1;   ///< counted from 1
    BGeoPDFPage Page;  ///< its boxes as viewers see them; the map that a read takes is in use
};

/// The maps of all pages of a PDF, as a read beyond the rules sees them
/// (BMapAnchor::kValPDFWide). The numbers of maps that such a read takes count in the order
/// of BGeoPDFPage::Maps, from 1.
class MAPANCHOR_EXPORT BGeoPDFPages {
public:
    std::vector<BGeoPDFNumberedPage> Pages;  ///< those with a map, and the one that was asked for
    long PageCount = 0;                      ///< of the document, or what it states itself
    bool Complete = true;                    ///< false: there are more pages or maps than are looked at
    Tellurion::BString Fault;                ///< why the file cannot be opened; usually empty

    /// The maps of all pages: at most 20,000 pages and 10,000 maps. Never throws for what the
    /// file holds.
    static BGeoPDFPages List(const Tellurion::BString& file);
    /// The page that BMapAnchor::kValPDFPage of `params` names, alone; `params` may be null.
    /// Always one page, which says in its own fault why there is none. Costs less than a list
    /// where it is the first page.
    static BGeoPDFPages Describe(const Tellurion::BString& file, const Tellurion::BParamList* params);
};

}  // namespace MapAnchor
