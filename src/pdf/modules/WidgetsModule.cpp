#include "modules/WidgetsModule.h"

#include "objects/WarningBox.h"

#include <Tellurion/Module.h>

namespace VellumLib {
namespace {

constexpr WidgetsModule kFunctions = {.show = ShowMessageBox};
constexpr Tellurion::ModuleTable kTable = {MAPANCHOR_MODULE_VERSION, &kFunctions};

}  // namespace
}  // namespace VellumLib

extern "C" TELLURION_EXPORT const Tellurion::ModuleTable* mapanchor_module();

const Tellurion::ModuleTable* mapanchor_module() {
    return &VellumLib::kTable;
}
