#include "export/BExportGeoPDF.h"

#include "export/StructureElementNames.h"
#include "export/StructureExtension.h"
#include "objects/CPDFStructureElement.h"

#include <MapAnchor/BGeoReferenceWriteException.h>
#include <Tellurion/BException.h>

#include <QObject>

#include <podofo/podofo.h>

#include <algorithm>

namespace MapAnchor {

using Tellurion::BString;
using VellumLib::CPDFPathPoint;
using Names = VellumLib::StructureElementNames;

namespace {

/// The longest edge of a page that the PDF rules allow, in points.
constexpr double kLongestEdge = 14400.0;
constexpr std::size_t kFewestTiePoints = 4;

QString ToQString(const BString& text) {
    return QString::fromUtf8(text.Utf8());
}

QString MessageOf(const PoDoFo::PdfError& error, const QString& destination) {
    switch (error.GetError()) {
        case PoDoFo::ePdfError_FileNotFound:
            return QObject::tr(
                       "The file %1 could not be opened for writing, please check that the file is not "
                       "locked or currently in use.")
                .arg(destination);
        case PoDoFo::ePdfError_InvalidPassword:
            return QObject::tr(
                "Geospatial PDF export does not currently support password protected files.  You "
                "may save out the PDF without one and then apply a password using Adobe Acrobat.");
        case PoDoFo::ePdfError_OutOfMemory:
            return QObject::tr("Export aborted, not enough memory.");
        default:
            break;
    }
    const char* text = PoDoFo::PdfError::ErrorMessage(error.GetError());
    if (text && *text) return QString::fromLatin1(text);
    return QObject::tr("Geospatial PDF export encountered an unknown error and can not continue.");
}

}  // namespace

BExportGeoPDF::BExportGeoPDF() : CPDFExport("Northfold Systems", nullptr) {
    SetClearContents(false);
}

BExportGeoPDF::~BExportGeoPDF() = default;

void BExportGeoPDF::SetCoordSysTexts(const BString* wkt, const BString* epsg) {
    wkt_ = wkt ? ToQString(*wkt) : QString();
    epsg_ = epsg ? ToQString(*epsg) : QString();
}

void BExportGeoPDF::SetPageSize(double width, double height) {
    page_width_ = width;
    page_height_ = height;
}

void BExportGeoPDF::SetOrigin(double x, double y) {
    origin_x_ = x;
    origin_y_ = y;
}

void BExportGeoPDF::SetUnitName(const BString& name) {
    unit_name_ = ToQString(name);
}

void BExportGeoPDF::SetCoordSysName(const BString& name) {
    coord_sys_name_ = ToQString(name);
}

void BExportGeoPDF::SetMapName(const BString& name) {
    SetViewportName(ToQString(name));
}

void BExportGeoPDF::AddTiePoint(const CPDFPathPoint& pixel, const CPDFPathPoint& world) {
    pixel_points_.push_back(pixel);
    world_points_.push_back(world);
}

void BExportGeoPDF::PrepareDocument(VellumLib::CPDFDocument& document) {
    if (!spares_document_) return;
    KeepPieceInfo();
    document.GetPage(GetPageIndex()).GetDictionary().RemoveKey("LGIDict");
    const bool has_structure =
        extends_structure_
            ? ExtendStructure(document, GetPageIndex(), BString(coord_sys_name_.toUtf8().constData()))
            : document.GetCatalog().HasKey("StructTreeRoot");
    if (has_structure) KeepStructure();
}

QString BExportGeoPDF::GetVersionText() {
    return "3.2";
}

QString BExportGeoPDF::GetVersionKey() {
    return "RastrelVersion";
}

QString BExportGeoPDF::GetPieceInfoKey() {
    return "RastrelSpatialPDF";
}

void BExportGeoPDF::WriteViewports(VellumLib::CPDFDocument& document, VellumLib::CPDFArray& vp) {
    CPDFPathPoint lower_left;
    lower_left.x = origin_x_;
    lower_left.y = origin_y_;
    CPDFPathPoint upper_right;
    const double longest = std::max(page_width_, page_height_);
    const double factor = longest > kLongestEdge ? kLongestEdge / longest : 1.0;
    upper_right.x = origin_x_ + page_width_ * factor;
    upper_right.y = origin_y_ + page_height_ * factor;
    WriteViewport(document, vp, lower_left, upper_right, {wkt_, epsg_}, 0);
}

void BExportGeoPDF::GetTiePoints(Points& lpts, Points& gpts) {
    if (std::min(pixel_points_.size(), world_points_.size()) < kFewestTiePoints) return;
    for (CPDFPathPoint& point : pixel_points_) {
        const double column = point.x;
        point.x = 1.0 - point.y / page_height_;
        point.y = column / page_width_;
    }
    lpts = pixel_points_;
    gpts = world_points_;
}

void BExportGeoPDF::HandlePdfError(const PoDoFo::PdfError& error) {
    // A disk may be full only when the last bytes are written.
    if (IsWriting() && error.GetError() == PoDoFo::ePdfError_InvalidDeviceOperation)
        throw BGeoReferenceWriteException(
            "BRefGeoPDF::Write",
            BString::Format(
                "Failed writing PDF file <%ls>: %s.", BString(GetDestinationPath().toUtf8().constData()),
                error.GetCallstack().empty() ? "" : error.GetCallstack().back().GetInformation()));
    throw Tellurion::BException(BString(MessageOf(error, GetDestinationPath()).toLocal8Bit().constData()));
}

void BExportGeoPDF::WriteStructure(VellumLib::CPDFDocument& document, VellumLib::CPDFPage& page,
                                   VellumLib::CPDFStructureTreeRoot& root) {
    VellumLib::CPDFArray kids = root.GetDocumentKids();
    VellumLib::CPDFStructureElement element(document, root, kids, true, 0, Names::kTitle);
    element.AddUserProperty(QObject::tr(Names::kProperty), coord_sys_name_);
    if (spares_document_) element.AddReference("Pg", page.GetDictionary());
}

}  // namespace MapAnchor
