#pragma once

#include <Tellurion/BGeoReference.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>

namespace MapAnchor {

/// True where the host asks for a save beyond the rules.
bool IsWideSave(const Tellurion::BKeyValuePairs* params);

/// Georeferences a page of a PDF without harm to what is in the file: by an incremental update
/// where the host asks for one, or where writing the whole file would break something and the
/// host leaves the choice; else by writing the whole file, with a warning for what that breaks.
/// The page loses its older maps of either dialect, other pages keep theirs. A map whose corner
/// is the lower left one of the page's media box covers as much of it as the raster does.
///
/// Whatever fails, the file stays as it was. Throws a BGeoReferenceInvalidCoordSysException for
/// a system that cannot be written, a BException for a reference without enough points, a
/// BReadParametersException for a page that the file does not have, a
/// BGeoReferenceNotSupportedException for a file that cannot be changed in the way that is
/// asked for, and a BGeoReferenceWriteException for a write that fails.
void SaveWide(const Tellurion::BString& file, const Tellurion::BGeoReference& reference, long width,
              long height, const Tellurion::BKeyValuePairs& params);

}  // namespace MapAnchor
