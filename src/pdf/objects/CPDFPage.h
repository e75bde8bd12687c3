#pragma once

#include "objects/CPDFCanvas.h"
#include "objects/CPDFDictionary.h"

#include <set>

namespace VellumLib {

class CPDFDocument;

/// A page: its boxes, its dictionary, and its content walked through the forms that
/// it draws. Rotation and UserUnit are not looked at: everything is in unrotated page
/// space, in points.
class CPDFPage : public CPDFCanvas {
public:
    /// Throws a PdfError when the document has no such page.
    CPDFPage(CPDFDocument* document, int index);
    /// The same page with a reading and writing state of its own.
    CPDFPage(const CPDFPage& other);
    ~CPDFPage() override;

    /// Can be referred to.
    CPDFDictionary GetDictionary() const;

    // Left, bottom, right, top as the file has them. Where the page itself does not
    // have that box, its crop or media box; empty when there is none. What the page
    // only inherits is not found.
    std::vector<double> GetMediaBox() const;
    std::vector<double> GetCropBox() const;
    std::vector<double> GetBleedBox() const;
    std::vector<double> GetTrimBox() const;
    std::vector<double> GetArtBox() const;

    /// The turn in which a viewer shows the page, clockwise: 0 to 359 degrees. Of its own,
    /// else of the nearest node above it.
    int GetRotation() const;
    /// In 1/72 inch; 1 where the page does not tell.
    double GetUserUnit() const;

    /// The name or title of an entry of the page's property list; empty without.
    QString GetPropertyTitle(const QString& resource_name) const;
    /// The dialect of geospatial PDF that the page speaks.
    enum ESpatialKind : std::int32_t {
        kSpatialNone = 0,
        kSpatialMeasure = 1,  ///< a usable viewport
        kSpatialLGIDict = 2,  ///< no usable viewport, but an "LGIDict"
    };
    std::int32_t GetSpatialKind() const;

    /// Bytes of the content with its filters undone; 0 when it has no stream.
    std::size_t GetContentsLength() const;

    /// The next statement of the page and the forms that it draws, in drawing order;
    /// each form is entered once. Gives the kind, 0 at the end.
    std::int32_t GetNextStatement(CPDFStatement& statement);

    /// Whether a flush replaces the content or adds to it.
    void SetClearOnFlush(bool clear) { clear_on_flush_ = clear; }
    void FlushTopCanvas();

    void OpenContents() override;
    void WriteStatement(const CPDFStatement& statement) override;
    void WriteText(const QString& text) override;
    void FlushContents() override;

private:
    CPDFCanvas& Top();
    std::vector<double> GetBox(int selector) const;

    PoDoFo::PdfPage* page_ = nullptr;
    std::vector<QString> output_;
    PoDoFo::PdfObject* properties_ = nullptr;  ///< the document's; null when absent
    CPDFDocument* document_;
    bool clear_on_flush_ = false;
    std::set<std::uint32_t> visited_;                    ///< numbers of the forms entered so far
    std::vector<std::unique_ptr<CPDFXObject>> entered_;  ///< above this page
};

}  // namespace VellumLib
