#pragma once

#include "BRefGeoPDF.h"
#include "PdfFunctions.h"

#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/BGeoPDFPages.h>
#include <MapAnchor/BGeoPDFTraits.h>

namespace MapAnchor {

/// The functions of the module "pdf", which links PoDoFo and Qt: those of PdfFunctions.h and of
/// BRefGeoPDF. PdfForwarders.cpp defines each once more, for the library, as a call through
/// this table.
struct PdfModule {
    using BGeoReference = Tellurion::BGeoReference;
    using BParamList = Tellurion::BParamList;
    using BString = Tellurion::BString;

    BGeoPDFPage (*describe_first_page)(const BString&);
    BGeoPDFPages (*list_pages)(const BString&);
    BGeoPDFPages (*describe_page)(const BString&, const BParamList*);
    BGeoPDFTraits (*traits_of_file)(const BString&);
    std::vector<BDiagnostic> (*check_file)(const BString&);
    bool (*read)(const BString&, const unsigned int&, BGeoReference&, Tellurion::EMathTransformType, long,
                 long, const BParamList*);
    bool (*write)(const BString&, const BGeoReference&, long, long, const BParamList*);
};

}  // namespace MapAnchor
