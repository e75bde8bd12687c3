// The way in to a geospatial PDF: by the rules, or beyond them where the host asks for it.

#include "BRefGeoPDF.h"

#include "common/policy/ReadNotes.h"

#include "import/ReadGeoPDF.h"
#include "objects/CPDFDocument.h"
#include "wide/ReadWideGeoPDF.h"

#include <Tellurion/BLogger.h>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BParamList;
using Tellurion::BString;
using Tellurion::ELogSeverity;
using Tellurion::EMathTransformType;
using VellumLib::CPDFDocument;

namespace {

void AddOrigins(const WideReading& reading, const BString& file) {
    if (ReadNotes* const notes = ReadNotes::Explaining())
        for (const VellumLib::WideOrigin& origin : reading.origins)
            notes->AddOrigin(origin.value, file, origin.place);
}

/// The read by the rules keeps no places; the wide one finds the same map and knows them.
void ExplainRead(const BString& file, EMathTransformType mathType, long width, long height,
                 const BParamList* params) {
    if (!ReadNotes::Explaining()) return;
    constexpr unsigned int kNoFlags = 0;
    BGeoReference ignored;
    try {
        AddOrigins(ReadWideGeoPDF(file, kNoFlags, ignored, mathType, width, height, params), file);
    } catch (...) {
        // What the rules read has been read; only its places remain unknown.
    }
}

}  // namespace

bool BRefGeoPDF::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                      EMathTransformType mathType, long width, long height, const BParamList* params) {
    if (IsWideRead(params)) {
        const WideReading reading = ReadWideGeoPDF(file, flags, reference, mathType, width, height, params);
        AddOrigins(reading, file);
        for (const VellumLib::WideRemark& remark : reading.remarks)
            BLogger::Instance()->Write(ELogSeverity::Warning, BString(remark.id + ": " + remark.text));
        return !reference.CoordSys.IsEmpty();
    }
    CPDFDocument document(QString::fromStdWString(file.WideStr()), VellumLib::EPDFExtent::FirstPage);
    const bool has_system = ReadGeoPDF(document, flags, reference, mathType, width, height, params);
    ExplainRead(file, mathType, width, height, params);
    return has_system;
}

bool BRefGeoPDF::Read(const BString& file, BGeoReference& reference, EMathTransformType mathType, long width,
                      long height, const BParamList* params) {
    constexpr unsigned int kNoFlags = 0;
    return Read(file, kNoFlags, reference, mathType, width, height, params);
}

}  // namespace MapAnchor
