#pragma once

#include <MapAnchor/BReadingOptions.h>

namespace MapAnchor {

/// What options hold.
struct ReadingOptionsState {
    bool has_type = false;
    Tellurion::EReferenceType type = Tellurion::EReferenceType::Reserved;
    unsigned int flags = 0;
    long width = 0;
    long height = 0;
    bool finds_size = false;
    Tellurion::EMathTransformType math_type = Tellurion::EMathTransformType::Affine;
    Tellurion::BString source;
    Tellurion::BSharedPtr<Tellurion::BCoordSys> system;
    bool overrides_system = false;
    int pdf_page = 1;
    Tellurion::BString pdf_map;
    bool pdf_shown = false;
    bool lists_pdf_pages = false;
    bool pdf_strict = false;
    bool reads_headers = true;
    bool explains = false;
    Tellurion::BParamList params;
};

}  // namespace MapAnchor
