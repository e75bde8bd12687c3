#include "Module.h"

#include <Tellurion/BLogger.h>

namespace py = pybind11;
using namespace Tellurion;

namespace {

/// Sends the log to the logger "mapanchor" as long as the interpreter runs.
void SendLogToPython() {
    py::handle logger = py::module_::import("logging").attr("getLogger")("mapanchor").release();
    BLogger::Instance()->SetSink([logger](ELogSeverity severity, const BString& text) {
        const py::gil_scoped_acquire acquired;
        try {
            logger.attr("log")(severity == ELogSeverity::Error ? 40 : 20, "%s", text);
        } catch (py::error_already_set& error) {
            error.discard_as_unraisable("mapanchor log");
        }
    });
    py::module_::import("atexit").attr("register")(
        py::cpp_function([] { BLogger::Instance()->SetSink({}); }));
}

void TakeValueClasses(py::module_& module) {
    for (const char* name : {"Diagnostic", "Map", "Origin", "Source"}) {
        const py::object value = py::detail::ValueClass(name);
        value.attr("__module__") = "mapanchor";
        module.attr(name) = value;
    }
}

}  // namespace

PYBIND11_MODULE(_mapanchor, module) {
    module.attr("__version__") = MAPANCHOR_VERSION;
    DefineFailures(module);
    DefineEnumerations(module);
    TakeValueClasses(module);
    DefinePoints(module);
    DefineTransform(module);
    DefineSystem(module);
    DefineReference(module);
    DefineReading(module);
    DefineSaving(module);
    DefineReport(module);
    Document(module);
    SendLogToPython();
}
