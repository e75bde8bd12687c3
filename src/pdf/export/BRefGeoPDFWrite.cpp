#include "BRefGeoPDF.h"

#include "export/BExportGeoPDF.h"
#include "export/MovedAside.h"
#include "export/SaveParts.h"
#include "export/WideSave.h"

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BGeoReference;
using Tellurion::BKeyValuePairs;
using Tellurion::BParamList;
using Tellurion::BString;

namespace {

/// Runs `step`; when it throws, the user's PDF goes back to its place.
template <class Step>
auto OrRestore(MovedAside& original, Step step) {
    try {
        return step();
    } catch (...) {
        original.Restore();
        throw;
    }
}

}  // namespace

bool BRefGeoPDF::Write(const BString& file, const BGeoReference& reference, long width, long height,
                       const BParamList* params) {
    return Write(&file, 0, reference, width, height, params);
}

bool BRefGeoPDF::Write(const BString* file, unsigned char flags, const BGeoReference& reference, long width,
                       long height, const BKeyValuePairs* params) {
    if (IsWideSave(params)) {
        SaveWide(file ? *file : BString(), reference, width, height, *params);
        return true;
    }
    MovedAside original(file ? *file : BString());
    BExportGeoPDF out;
    out.SetSourcePath(original.Name());
    out.SetDestinationPath(original.Destination());
    out.SetWorkPath(original.WorkName());
    const double scale = PointsPerPixel(params);
    const double page_width = static_cast<double>(width) * scale;
    const double page_height = static_cast<double>(height) * scale;
    out.SetPageSize(page_width, page_height);

    OrRestore(original, [&] {
        RequireReference(reference);
        RequirePageSize(page_width, page_height);
        const BCoordSys& system = *reference.CoordSys;
        const BString wkt = SystemText(system, flags);
        const BString code = SystemCode(system);
        out.SetCoordSysName(NameOf(system));
        out.SetUnitName(UnitNameOf(system));
        out.SetCoordSysTexts(&wkt, &code);
    });
    TiePoints points;
    const bool tied = OrRestore(original, [&] {
        const bool projected = reference.CoordSys->GetKind() == BCoordSys::kKindProjected;
        return CollectTiePoints(reference, projected, scale, width, height, points);
    });
    for (std::size_t i = 0; i < points.pixels.size(); ++i)
        out.AddTiePoint(points.pixels[i], points.worlds[i]);
    if (!tied) return false;  // the PDF stays under the temporary name
    if (out.Export())
        original.ReplaceByResult();
    else
        original.RestoreIfGone();
    return true;
}

}  // namespace MapAnchor
