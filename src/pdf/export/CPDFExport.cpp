#include "export/CPDFExport.h"

#include "export/UnitNames.h"
#include "objects/WarningBox.h"

#include <QDateTime>
#include <QFile>
#include <QObject>

#include <podofo/podofo.h>

#include <cmath>
#include <exception>

namespace VellumLib {
namespace {

/// The longest text that the PDF rules allow for a system.
constexpr int kLongestText = 1024;
/// Of "EPSG:".
constexpr int kCodePrefix = 5;

double WrapLongitude(double longitude) {
    const double wrapped = std::fmod(longitude, 360.0);
    if (wrapped > 180.0) return wrapped - 360.0;
    if (wrapped < -180.0) return wrapped + 360.0;
    return wrapped;
}

/// In pairs, y before x.
void WritePoints(CPDFArray& array, const CPDFExport::Points& points) {
    int index = 0;
    for (const CPDFPathPoint& point : points) {
        array.InsertPreciseReal(index++, point.y);
        array.InsertPreciseReal(index++, point.x);
    }
}

}  // namespace

CPDFExport::CPDFExport(const QString& title, QWidget* parent) : title_(title), parent_(parent) {}

CPDFExport::~CPDFExport() = default;

void CPDFExport::SetDestinationPath(const QString& path) {
    const QLatin1String ending(".pdf");
    destination_path_ = path.endsWith(ending) ? path : path + ending;
}

void CPDFExport::Warn(const QString& text) const {
    ShowWarningBox(parent_, title_, text);
}

bool CPDFExport::Export() {
    if (source_path_.isEmpty()) {
        Warn(QObject::tr("Could not open temporary file, the PDF file was not exported"));
        return false;
    }
    try {
        ExportDocument();
        return true;
    } catch (const PoDoFo::PdfError& error) {
        QFile::remove(GetWorkPath());
        HandlePdfError(error);
    } catch (const std::exception& error) {
        Warn(QString::fromLatin1(error.what()));
    }
    return false;
}

void CPDFExport::ExportDocument() {
    CPDFDocument document(source_path_);
    if (!IsDocumentPrepared()) PrepareDocument(document);
    if (keeps_structure_) {
        WritePieceInfo(document);
        WritePage(document, nullptr);
    } else {
        WriteStructuredPage(document);
    }
    writing_ = true;
    document.Write(GetWorkPath());
}

void CPDFExport::WriteStructuredPage(CPDFDocument& document) {
    CPDFDictionary mark_info = document.GetCatalog().AddNewDictionary("MarkInfo");
    mark_info.AddBool("Marked", true);
    mark_info.AddBool("UserProperties", true);
    WritePieceInfo(document);
    CPDFStructureTreeRoot root(document);
    document.GetPage(page_index_).GetDictionary().AddInteger("StructParents", 0);
    WritePage(document, &root);
}

void CPDFExport::WritePage(CPDFDocument& document, CPDFStructureTreeRoot* root) {
    CPDFPage page(document.GetPage(page_index_));
    CPDFArray vp = page.GetDictionary().AddNewArray("VP");
    WriteViewports(document, vp);
    if (root) WriteStructure(document, page, *root);
    page.SetClearOnFlush(clear_contents_);
    page.FlushTopCanvas();
}

void CPDFExport::WritePieceInfo(CPDFDocument& document) {
    PoDoFo::PdfObject* const kept =
        keeps_piece_info_ ? document.Document().GetCatalog()->GetIndirectKey("PieceInfo") : nullptr;
    CPDFDictionary piece_info = kept && kept->IsDictionary()
                                    ? CPDFDictionary(kept->GetDictionary())
                                    : document.GetCatalog().AddNewDictionary("PieceInfo");
    CPDFDictionary application = document.CreateDictionary();
    CPDFDictionary private_data = document.CreateDictionary();
    private_data.AddString(GetVersionKey(), GetVersionText());
    // A plain text of the time, which readers of this entry show unchanged.
    application.AddString("LastModified", QDateTime::currentDateTime().toString(Qt::TextDate));
    application.AddReference("Private", private_data);
    piece_info.AddReference(GetPieceInfoKey(), application);
}

void CPDFExport::WriteViewport(CPDFDocument& document, CPDFArray& vp, const CPDFPathPoint& lower_left,
                               const CPDFPathPoint& upper_right, const SystemTexts& system, int index) {
    CPDFDictionary viewport = vp.InsertNewDictionary(index);
    CPDFArray box = viewport.AddNewArray("BBox");
    int position = 0;
    for (const double edge : {lower_left.x, lower_left.y, upper_right.x, upper_right.y})
        box.InsertPreciseReal(position++, edge);
    CPDFDictionary measure = document.CreateDictionary();
    viewport.AddReference("Measure", measure);
    viewport.AddString("Name", viewport_name_);
    viewport.AddName("Type", "Viewport");
    WriteMeasure(document, measure, system);
}

void CPDFExport::WriteMeasure(CPDFDocument& document, CPDFDictionary& measure, const SystemTexts& system) {
    measure.AddName("Type", "Measure");
    measure.AddName("Subtype", "GEO");
    CPDFArray bounds = measure.AddNewArray("Bounds");
    WriteBounds(bounds);
    CPDFDictionary gcs = document.CreateDictionary();
    measure.AddReference("GCS", gcs);
    WriteGCS(gcs, system);
    CPDFArray gpts_array = measure.AddNewArray("GPTS");
    CPDFArray lpts_array = measure.AddNewArray("LPTS");
    Points lpts;
    Points gpts;
    GetTiePoints(lpts, gpts);
    for (CPDFPathPoint& point : gpts)
        point.x = keeps_longitudes_ ? point.x : WrapLongitude(point.x);
    WritePoints(lpts_array, lpts);
    WritePoints(gpts_array, gpts);
    CPDFArray pdu = measure.AddNewArray("PDU");
    WritePDU(pdu, GetUnitName());
}

void CPDFExport::WriteBounds(CPDFArray& bounds) {
    int index = 0;
    for (const double value : {0.0, 0.0, 0.0, 1.0, 1.0, 1.0, 1.0, 0.0})
        bounds.InsertReal(index++, value);
}

void CPDFExport::WriteGCS(CPDFDictionary& gcs, const SystemTexts& system) {
    const auto& [wkt, code] = system;
    gcs.AddName("Type", wkt.left(6));
    gcs.AddString("WKT", wkt);
    if (!code.isEmpty()) {
        const int number = code.mid(kCodePrefix).toInt();
        if (number >= 0) gcs.AddInteger("EPSG", number);
    }
    if (wkt.size() > kLongestText)
        Warn(
            QObject::tr("The well-known text (WKT) string for this coordinate system is longer than the PDF "
                        "standard allows. The exported PDF will not support this coordinate system."));
}

void CPDFExport::WritePDU(CPDFArray& pdu, const QString& unit_name) {
    const UnitNames& names = UnitNamesOf(unit_name);
    pdu.InsertName(0, names.linear);
    pdu.InsertName(1, names.area);
    pdu.InsertName(2, names.angular);
}

}  // namespace VellumLib
