#include "VirtualSidecars.h"

#include "SidecarNames.h"
#include "raster/gdal/VirtualFiles.h"

#include <Tellurion/BFileUtilities.h>

#include <utility>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BString;

void VirtualSidecars::Add(const BString& file) {
    constexpr std::size_t kMaxLength = std::size_t{16} << 20;
    if (Tellurion::FileStandIns::Has(file.Utf8())) return;
    auto content = VirtualFiles::Read(file, kMaxLength);
    if (content) contents_.Add(file.StdStr(), std::move(*content));
}

VirtualSidecars::VirtualSidecars(const BString& file) {
    if (!VirtualFiles::IsName(file)) return;
    if (IsSidecarName(file)) {
        Add(file);
        Add(BFileUtilities::ChangeExtension(file, "prj"));
        return;
    }
    for (const SidecarName& beside : FindSidecars(file))
        Add(beside.file);
}

}  // namespace MapAnchor
