#pragma once

#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"
#include "objects/CPDFPathPoint.h"
#include "objects/CPDFStructureTreeRoot.h"

#include <QString>

#include <utility>
#include <vector>

class QWidget;

namespace VellumLib {

/// Adds georeferencing to a page of a PDF that exists, and writes the result
/// to another file. What the georeferencing is, a derived class says. Set up once,
/// exported once; warnings go through the warning box.
class CPDFExport {
public:
    /// The well-known text and the code ("EPSG:32633", or empty) of a system.
    using SystemTexts = std::pair<QString, QString>;
    using Points = std::vector<CPDFPathPoint>;

    CPDFExport(const QString& title, QWidget* parent);
    virtual ~CPDFExport();
    CPDFExport(const CPDFExport&) = delete;
    CPDFExport& operator=(const CPDFExport&) = delete;

    void SetSourcePath(const QString& path) { source_path_ = path; }
    /// Appends ".pdf" unless the path ends in it; the case counts.
    void SetDestinationPath(const QString& path);
    /// Where the result is written, for the caller to move to the destination; empty for the
    /// destination itself.
    void SetWorkPath(const QString& path) { work_path_ = path; }
    /// Whether the page loses its own content; it does unless set otherwise.
    void SetClearContents(bool clear) { clear_contents_ = clear; }
    /// The page that is georeferenced, counted from 0; the first one unless set otherwise.
    void SetPageIndex(int index) { page_index_ = index; }
    /// Whether longitudes are written as they are, and not within 180 degrees of Greenwich.
    void SetKeepsLongitudes(bool keeps) { keeps_longitudes_ = keeps; }
    /// "AllLayers" until set.
    void SetViewportName(const QString& name) { viewport_name_ = name; }
    int GetPageIndex() const { return page_index_; }
    const QString& GetSourcePath() const { return source_path_; }
    /// True once all is in the document and the destination is being written.
    bool IsWriting() const { return writing_; }
    const QString& GetWorkPath() const { return work_path_.isEmpty() ? destination_path_ : work_path_; }
    const QString& GetDestinationPath() const { return destination_path_; }
    bool GetClearContents() const { return clear_contents_; }

    /// True when the destination was written. A failure of PoDoFo removes what
    /// was written and goes to HandlePdfError; any other ends in a warning box. The
    /// source is only read.
    bool Export();

    /// A viewport of the page, in points, placed into the page's "VP".
    void WriteViewport(CPDFDocument& document, CPDFArray& vp, const CPDFPathPoint& lower_left,
                       const CPDFPathPoint& upper_right, const SystemTexts& system, int index);
    void WriteMeasure(CPDFDocument& document, CPDFDictionary& measure, const SystemTexts& system);
    void WriteBounds(CPDFArray& bounds);
    void WriteGCS(CPDFDictionary& gcs, const SystemTexts& system);
    /// The names of the linear, area and angular unit; metres and degrees for a unit
    /// without one.
    void WritePDU(CPDFArray& pdu, const QString& unit_name);
    void WritePieceInfo(CPDFDocument& document);

protected:
    /// For PrepareDocument: the document keeps its logical structure, which is not written anew.
    void KeepStructure() { keeps_structure_ = true; }
    /// The same for what other programs have in "PieceInfo".
    void KeepPieceInfo() { keeps_piece_info_ = true; }

    virtual void PrepareDocument(CPDFDocument& document) = 0;
    virtual QString GetVersionText() = 0;
    virtual QString GetVersionKey() = 0;
    virtual QString GetPieceInfoKey() = 0;
    virtual void WriteViewports(CPDFDocument& document, CPDFArray& vp) = 0;
    /// The name of the linear unit, such as "METERS".
    virtual QString GetUnitName() = 0;
    /// Fills two empty lists. A point of `lpts` is in the unit square of the
    /// viewport: its vertical position in x, its horizontal one in y. A point of
    /// `gpts` has longitude in x and latitude in y, in degrees.
    virtual void GetTiePoints(Points& lpts, Points& gpts) = 0;
    virtual void ExportHookA() = 0;
    virtual void ExportHookB() = 0;
    virtual bool IsDocumentPrepared() = 0;
    /// Turns a failure into the derived class's own; may throw.
    virtual void HandlePdfError(const PoDoFo::PdfError& error) = 0;
    virtual void WriteStructure(CPDFDocument& document, CPDFPage& page, CPDFStructureTreeRoot& root) = 0;

private:
    void ExportDocument();
    void WriteStructuredPage(CPDFDocument& document);
    /// Without a root where the structure is kept.
    void WritePage(CPDFDocument& document, CPDFStructureTreeRoot* root);
    void Warn(const QString& text) const;

    QString source_path_;
    QString destination_path_;
    QString work_path_;
    bool writing_ = false;
    QString title_;
    QWidget* parent_;
    bool clear_contents_ = true;
    int page_index_ = 0;
    bool keeps_longitudes_ = false;
    bool keeps_structure_ = false;
    bool keeps_piece_info_ = false;
    QString viewport_name_ = QStringLiteral("AllLayers");
};

}  // namespace VellumLib
