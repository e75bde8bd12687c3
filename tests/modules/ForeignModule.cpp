#include <Tellurion/Module.h>

extern "C" __attribute__((visibility("default"))) const Tellurion::ModuleTable* mapanchor_module() {
    static constexpr Tellurion::ModuleTable table = {"0.0.0", nullptr};
    return &table;
}
