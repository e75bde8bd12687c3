#pragma once

#include "export/CPDFExport.h"

#include <Tellurion/BString.h>

#include <QString>

#include <vector>

namespace MapAnchor {

/// The export of a raster's reference: one viewport over the whole first page, tied
/// to the Earth by control points. The page's own content stays.
class BExportGeoPDF : public VellumLib::CPDFExport {
public:
    BExportGeoPDF();
    ~BExportGeoPDF() override;

    /// The well-known text and the code of the system; null counts as empty.
    void SetCoordSysTexts(const Tellurion::BString* wkt, const Tellurion::BString* epsg);
    /// In points.
    void SetPageSize(double width, double height);
    /// Of the page's lower left corner, in points; 0, 0 unless set otherwise.
    void SetOrigin(double x, double y);
    /// Beyond the rules: the page loses the maps of the other dialect, which readers would prefer,
    /// and the document keeps the logical structure that it has.
    void SetSparesDocument(bool spares) { spares_document_ = spares; }
    /// Whether a structure that is kept gets the element of the map; it does unless set otherwise.
    void SetExtendsStructure(bool extends) { extends_structure_ = extends; }
    void SetUnitName(const Tellurion::BString& name);
    void SetCoordSysName(const Tellurion::BString& name);
    /// Of the viewport; "AllLayers" until set.
    void SetMapName(const Tellurion::BString& name);
    /// A pixel's place on the page in points, from the top left, and its longitude
    /// (x) and latitude (y) in degrees.
    void AddTiePoint(const VellumLib::CPDFPathPoint& pixel, const VellumLib::CPDFPathPoint& world);
    std::size_t GetTiePointCount() const { return pixel_points_.size(); }

protected:
    void PrepareDocument(VellumLib::CPDFDocument& document) override;
    QString GetVersionText() override;
    QString GetVersionKey() override;
    QString GetPieceInfoKey() override;
    void WriteViewports(VellumLib::CPDFDocument& document, VellumLib::CPDFArray& vp) override;
    QString GetUnitName() override { return unit_name_; }
    void GetTiePoints(Points& lpts, Points& gpts) override;
    void ExportHookA() override {}
    void ExportHookB() override {}
    bool IsDocumentPrepared() override { return !spares_document_; }
    void HandlePdfError(const PoDoFo::PdfError& error) override;
    void WriteStructure(VellumLib::CPDFDocument& document, VellumLib::CPDFPage& page,
                        VellumLib::CPDFStructureTreeRoot& root) override;

private:
    QString wkt_;
    QString epsg_;
    double page_width_ = 0.0;
    double page_height_ = 0.0;
    double origin_x_ = 0.0;
    double origin_y_ = 0.0;
    bool spares_document_ = false;
    bool extends_structure_ = true;
    QString unit_name_;
    QString coord_sys_name_;
    Points pixel_points_;
    Points world_points_;
};

}  // namespace MapAnchor
