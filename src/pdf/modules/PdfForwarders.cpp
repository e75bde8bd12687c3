#include "modules/PdfModule.h"

#include <Tellurion/Module.h>

/// What libMapAnchor calls where PoDoFo and Qt are in a module of their own.
namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BParamList;
using Tellurion::BString;
using Tellurion::EMathTransformType;

namespace {

const PdfModule& Pdf() {
    static auto* const module = new Tellurion::Module("pdf", "Geospatial PDF files");
    return *static_cast<const PdfModule*>(module->Functions());
}

}  // namespace

BGeoPDFPage DescribeFirstPage(const BString& file) {
    return Pdf().describe_first_page(file);
}

BGeoPDFPages ListPages(const BString& file) {
    return Pdf().list_pages(file);
}

BGeoPDFPages DescribePage(const BString& file, const BParamList* params) {
    return Pdf().describe_page(file, params);
}

BGeoPDFTraits TraitsOfFile(const BString& file) {
    return Pdf().traits_of_file(file);
}

std::vector<BDiagnostic> CheckFile(const BString& file) {
    return Pdf().check_file(file);
}

bool BRefGeoPDF::Read(const BString& file, const unsigned int& flags, BGeoReference& reference,
                      EMathTransformType mathType, long width, long height, const BParamList* params) {
    return Pdf().read(file, flags, reference, mathType, width, height, params);
}

bool BRefGeoPDF::Write(const BString& file, const BGeoReference& reference, long width, long height,
                       const BParamList* params) {
    return Pdf().write(file, reference, width, height, params);
}

}  // namespace MapAnchor
