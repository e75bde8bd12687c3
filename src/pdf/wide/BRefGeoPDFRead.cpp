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

bool BRefGeoPDF::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                      EMathTransformType mathType, long width, long height, const BParamList* params) {
    if (IsWideRead(params)) {
        const WideReading reading = ReadWideGeoPDF(file, flags, reference, mathType, width, height, params);
        if (ReadNotes* const notes = ReadNotes::Explaining())
            for (const VellumLib::WideOrigin& origin : reading.origins)
                notes->AddOrigin(origin.value, file, origin.place);
        for (const VellumLib::WideRemark& remark : reading.remarks)
            BLogger::Instance()->Write(ELogSeverity::Warning, BString(remark.id + ": " + remark.text));
        return !reference.CoordSys.IsEmpty();
    }
    CPDFDocument document(QString::fromStdWString(file.WideStr()), VellumLib::EPDFExtent::FirstPage);
    return ReadGeoPDF(document, flags, reference, mathType, width, height, params);
}

bool BRefGeoPDF::Read(const BString& file, BGeoReference& reference, EMathTransformType mathType, long width,
                      long height, const BParamList* params) {
    constexpr unsigned int kNoFlags = 0;
    return Read(file, kNoFlags, reference, mathType, width, height, params);
}

}  // namespace MapAnchor
