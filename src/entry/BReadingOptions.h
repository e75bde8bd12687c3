#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/BString.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

#include <memory>

namespace MapAnchor {

struct ReadingOptionsState;

/// How BReading::Of() is to read. As constructed it does what suits most files. A copy is
/// cheap, and setting one leaves the other as it is.
class MAPANCHOR_EXPORT BReadingOptions {
public:
    BReadingOptions();
    BReadingOptions(const BReadingOptions&);
    BReadingOptions& operator=(const BReadingOptions&);
    ~BReadingOptions();

    /// Reads as this kind, whatever the file's name says, and looks at no other file.
    void SetType(Tellurion::EReferenceType type);
    bool HasType() const;                       ///< SetType() was called
    Tellurion::EReferenceType GetType() const;  ///< means nothing without HasType()

    /// BMapAnchor::kStrictTransform and kStrictCoordSys, for reads by type.
    void SetFlags(unsigned int flags);
    unsigned int GetFlags() const;  ///< 0 until set

    void SetSize(long width, long height);  ///< of the raster in pixels; 0 for unknown
    long GetWidth() const;                  ///< 0 when it was not set
    long GetHeight() const;                 ///< 0 when it was not set

    /// Looks for the raster's size where neither the caller nor the reader states it: in the
    /// file or in the raster beside a sidecar, which is opened for it. Off until set.
    void SetFindsSize(bool finds);
    bool FindsSize() const;  ///< false until set

    void SetMathType(Tellurion::EMathTransformType type);  ///< the fit through control points
    Tellurion::EMathTransformType GetMathType() const;     ///< affine until set

    /// Reads this source of a raster, by its kind such as "WLD" or by its file's name, in
    /// place of the one that wins; see BReferenceSources.
    void SetSource(const Tellurion::BString& name);
    Tellurion::BString GetSource() const;  ///< empty until set

    /// The system of a reference that has none or, with `overrides`, of any reference.
    void SetCoordSys(const Tellurion::BSharedPtr<Tellurion::BCoordSys>& system, bool overrides);
    Tellurion::BSharedPtr<Tellurion::BCoordSys> GetCoordSys() const;  ///< empty until set
    bool OverridesCoordSys() const;                                   ///< as set with the system

    /// The box of a PDF page that the raster shows, by the numbers of BMapAnchor::kValPDFCropType.
    void SetPdfBox(int box);
    int GetPdfBox() const;  ///< until set, the media box (5), or the crop box (4) of a page as shown
    static constexpr double kLeastResolution = 1.0;  ///< of a PDF's raster in dots per inch
    static constexpr double kMostResolution = 1e5;   ///< beyond that of any scanner
    /// The resolution of a PDF's raster in dots per inch. One beyond these bounds makes the read
    /// of a PDF fail with a BReadParametersException.
    void SetResolution(double dotsPerInch);
    double GetResolution() const;  ///< 72 until set
    void SetPdfPage(int page);     ///< of a PDF, from 1
    int GetPdfPage() const;        ///< 1 until set
    /// The map of a PDF's page by its name or, as "2", by its number from 1.
    void SetPdfMap(const Tellurion::BString& map);
    Tellurion::BString GetPdfMap() const;  ///< empty until set: the map that the reader picks
    /// The raster shows the page of a PDF as viewers draw it, turned and cropped.
    void SetPdfShown(bool shown);
    bool IsPdfShown() const;  ///< false until set
    /// States which other pages of a PDF have maps, at the price of a look at all pages.
    void SetListsPdfPages(bool lists);
    bool ListsPdfPages() const;  ///< false until set
    /// Accepts only what the typed read of a PDF accepts.
    void SetPdfStrict(bool strict);
    bool IsPdfStrict() const;  ///< false until set

    /// Whether a GeoTIFF without anything unusual may be read from its header alone, once GDAL
    /// has read another one with the same geo keys; the answer is the same. On until it is
    /// set to false.
    void SetReadsHeaders(bool reads);
    bool ReadsHeaders() const;  ///< see SetReadsHeaders()

    /// States where each value is written, see BReading::GetOrigins().
    void SetExplains(bool explains);
    bool Explains() const;  ///< false until set

    /// Further drivers of GDAL that may read, with commas between their names; see BGdalAccess.
    void SetGdalDrivers(const Tellurion::BString& names);

    /// All that a reader takes by key: what is set here, and keys that have no function.
    Tellurion::BParamList GetParams() const;
    void SetParam(const Tellurion::BString& key, const Tellurion::BString& value);  ///< replaces

    const ReadingOptionsState& GetState() const;  ///< for the library's own use

private:
    ReadingOptionsState& Change();

    std::shared_ptr<const ReadingOptionsState> state_;
};

}  // namespace MapAnchor
