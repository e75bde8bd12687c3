#include <Tellurion/ReferenceTags.h>

namespace Tellurion {

const BString REFERENCE_RSF_TAG(".rsf");
const BString REFERENCE_WLD_TAG(".tfw");
const BString REFERENCE_TIF_TAG(".tif");
const BString REFERENCE_TIFF_TAG(".tiff");
const BString REFERENCE_TAB_TAG(".tab");
const BString REFERENCE_ERS_TAG(".ers");
const BString REFERENCE_DOQ_TAG(".doq");
const BString REFERENCE_KAP_TAG(".kap");
const BString REFERENCE_SID_TAG(".sid");
const BString REFERENCE_ECW_TAG(".ecw");
const BString REFERENCE_JP2_TAG(".jp2");

}  // namespace Tellurion
