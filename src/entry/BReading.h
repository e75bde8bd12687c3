#pragma once

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/BReadingOptions.h>
#include <MapAnchor/Export.h>
#include <Tellurion/BControlPoint.h>
#include <Tellurion/BGeoReference.h>
#include <Tellurion/BString.h>

#include <memory>
#include <vector>

namespace MapAnchor {

class BGeoPDFPage;
struct ReadingState;

/// All that is known of the georeferencing of one file after it was read: the reference,
/// where it comes from, and every doubt. A value that is cheap to copy and never changes.
///
///     const BReading reading = BReading::Of("photo.jpg");
///     if (reading.HasReference()) Use(reading.GetReference());
///     else Show(reading.GetFailureText());
class MAPANCHOR_EXPORT BReading {
public:
    /// How it ended.
    enum class EOutcome : int {
        Read = 0,         ///< there is a reference
        NoReference = 1,  ///< the file was read, and carries no georeference
        Refused = 2,      ///< of an unsupported kind, encrypted, or against the rules of its kind
        NotFound = 3,     ///< there is no such file
        NoAccess = 4,     ///< it cannot be opened
        Invalid = 5,      ///< what it holds cannot be used
        OutOfMemory = 6,  ///< the process has no memory left
    };

    /// How an operation on a file ends by a failure of this type, such as "BFileNotFoundException" or
    /// "std::bad_alloc", where nothing else is known of the file. Never Read; Invalid for all other types.
    static EOutcome OutcomeOf(const Tellurion::BString& failureType);

    /// Where a value of the reference is written.
    struct MAPANCHOR_EXPORT Origin {
        Tellurion::BString Value;  ///< "size", "system", "points", "transform", "position", "pixel size" ...
        Tellurion::BString File;   ///< empty for what the caller gave
        Tellurion::BString Place;  ///< a line, a byte, a tag or an object, such as "lines 5 and 6"
    };

    /// Reads what a person means by the name: the file itself, by its name or, where only a
    /// read by type takes its kind, by type, then the sidecars of a raster. Nothing throws for
    /// the file's sake, and nothing is logged: what readers log becomes a diagnostic. Throws a
    /// BReadParametersException for a GDAL driver that is not known.
    static BReading Of(const Tellurion::BString& file, const BReadingOptions& options = BReadingOptions());

    BReading(const BReading&);
    BReading& operator=(const BReading&);
    ~BReading();

    EOutcome GetOutcome() const;  ///< see EOutcome
    bool HasReference() const;    ///< the outcome is Read
    /// Empty without one.
    const Tellurion::BGeoReference& GetReference() const;

    /// The control points of the reference as the file states them, with the fractions of their
    /// pixels where its kind has them; the reference itself holds whole pixels.
    std::vector<Tellurion::BControlPoint> GetControlPoints() const;

    Tellurion::BString GetFile() const;      ///< as named by the caller
    Tellurion::BString GetUsedFile() const;  ///< the one that the reference was read from
    /// Every file that took part, the used one first, such as photo.jgw and photo.prj.
    std::vector<Tellurion::BString> GetFiles() const;
    Tellurion::BString GetKind() const;  ///< the name of a BReferenceFormat, such as "WLD"; may be empty
    bool IsByName() const;               ///< read by name; false for a read by type
    bool IsSidecar() const;              ///< the used file is beside a raster and has no pixels
    /// Column 0, row 0 of the transform is the centre of the top left pixel, not its corner.
    bool IsCentreAnchored() const;

    long GetWidth() const;   ///< of the raster in pixels; 0 when not known
    long GetHeight() const;  ///< 0 when not known

    /// The page of a PDF with its maps; null for other files. Lives as long as the reading.
    const BGeoPDFPage* GetPdfPage() const;

    const std::vector<BDiagnostic>& GetDiagnostics() const;  ///< in the order in which they arose

    /// Where each value is written, as far as its reader knows; empty unless
    /// BReadingOptions::SetExplains() asks for it.
    std::vector<Origin> GetOrigins() const;

    /// Why there is no reference; the texts are empty when there is one.
    Tellurion::BString GetFailureText() const;     ///< message and detail
    Tellurion::BString GetFailureType() const;     ///< such as "BFileNotFoundException"
    Tellurion::BString GetFailureMessage() const;  ///< as BException::GetMessageText()
    Tellurion::BString GetFailureSource() const;   ///< as BException::GetSource()
    Tellurion::BString GetFailureDetail() const;   ///< as BException::GetDetail()
    /// Throws the failure as an exception of the Tellurion::BException family, or
    /// std::bad_alloc; does nothing when there is a reference.
    void ThrowFailure() const;

    /// For the library's own use.
    explicit BReading(std::shared_ptr<const ReadingState> state);

private:
    std::shared_ptr<const ReadingState> state_;
};

}  // namespace MapAnchor
