#include "Module.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace py = pybind11;

namespace {

struct Row {
    const char* name;
    const char* signature;
    const char* text;
};

constexpr Row kRows[] = {
#include "Docs.inc"
};

/// The form in which Python finds a signature before the text.
std::string TextOf(const Row& row) {
    const char* const dot = std::strrchr(row.name, '.');
    const std::string own = dot ? dot + 1 : row.name;
    return *row.signature ? own + row.signature + "\n--\n\n" + row.text : row.text;
}

/// The function behind a method; its text is on the heap, as pybind11 frees it.
void DocumentFunction(py::handle function, const Row& row) {
    const py::handle plain = PyInstanceMethod_Check(function.ptr())
                                 ? py::handle(PyInstanceMethod_GET_FUNCTION(function.ptr()))
                                 : function;
    PyMethodDef* const definition = reinterpret_cast<PyCFunctionObject*>(plain.ptr())->m_ml;
    std::free(const_cast<char*>(definition->ml_doc));  // NOLINT(cppcoreguidelines-no-malloc): pybind11's
    definition->ml_doc = strdup(TextOf(row).c_str());
}

py::object Find(py::handle module, const std::string& name) {
    const auto dot = name.find('.');
    if (!py::hasattr(module, name.substr(0, dot).c_str())) return py::none();
    const py::object top = module.attr(name.substr(0, dot).c_str());
    if (dot == std::string::npos) return top;
    // As it is stored, not as a class gives it.
    const py::object members = top.attr("__dict__");
    return members.contains(name.substr(dot + 1)) ? py::object(members[name.substr(dot + 1).c_str()])
                                                  : py::object(py::none());
}

bool IsFunction(py::handle found) {
    return PyCFunction_Check(found.ptr()) || PyInstanceMethod_Check(found.ptr());
}

}  // namespace

void Document(py::module_& module) {
    for (const Row& row : kRows) {
        const py::object found = Find(module, row.name);
        if (IsFunction(found))
            DocumentFunction(found, row);
        else if (PyType_Check(found.ptr()) || PyObject_TypeCheck(found.ptr(), &PyProperty_Type))
            found.attr("__doc__") = row.text;
        if (PyType_Check(found.ptr())) found.attr("__module__") = "mapanchor";
    }
}
