#include "modules/PdfModule.h"

#include <MapAnchor/Export.h>
#include <Tellurion/Module.h>

namespace MapAnchor {
namespace {

constexpr PdfModule kFunctions = {
    .describe_first_page = DescribeFirstPage,
    .list_pages = ListPages,
    .describe_page = DescribePage,
    .traits_of_file = TraitsOfFile,
    .check_file = CheckFile,
    .read = BRefGeoPDF::Read,
    .write = BRefGeoPDF::Write,
};

constexpr Tellurion::ModuleTable kTable = {MAPANCHOR_MODULE_VERSION, &kFunctions};

}  // namespace
}  // namespace MapAnchor

extern "C" MAPANCHOR_EXPORT const Tellurion::ModuleTable* mapanchor_module();

const Tellurion::ModuleTable* mapanchor_module() {
    return &MapAnchor::kTable;
}
