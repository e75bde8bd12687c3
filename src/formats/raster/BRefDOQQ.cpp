#include "raster/BRefDOQQ.h"

#include "common/PlainNames.h"
#include "raster/DoqHeader.h"

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BString;

bool BRefDOQQ::Read(const BString& file, BGeoReference& reference) {
    RandomAccessFile in(file);
    if (!in.IsOpen()) return false;
    const DoqHeader header = ParseDoqHeader(in);
    StoreWhatThereIs(reference, header.ToAffine(), {"UTM-" + header.zone + "N", "NAD27", "METERS"},
                     "BRefDOQQ::Read Failure setting the BMathTransform or BCoordSys ERROR (%ls)");
    return true;
}

void BRefDOQQ::Read(const BString&, const unsigned int&, BGeoReference&) {
    throw BGeoReferenceNotSupportedException("BrefDOQQ::Read", "This version of Read is not yet supported");
}

void BRefDOQQ::Write(const BString&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

void BRefDOQQ::Write(const BString&, const unsigned int&, const BGeoReference&) {
    Refuse(kSaveRefusal);
}

}  // namespace MapAnchor
