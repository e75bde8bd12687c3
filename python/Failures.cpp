#include "Module.h"

#include <Tellurion/BException.h>

#include <cstring>
#include <exception>
#include <string>

namespace py = pybind11;

namespace {

/// A class of failures, its name in Python and the built-in exception that it also is.
struct Row {
    const char* type;
    const char* name;
    PyObject* builtin;
};

// The classes live as long as the interpreter.
PyObject* base = nullptr;
PyObject* classes[12] = {};

const Row* Rows() {
    static const Row rows[] = {
        {"BFileNotFoundException", "MissingFileError", PyExc_FileNotFoundError},
        {"BFileAccessException", "FileAccessError", PyExc_OSError},
        {"BGeoReferenceReadException", "ReadError", PyExc_OSError},
        {"BGeoReferenceWriteException", "WriteError", PyExc_OSError},
        {"BUnsupportedFileTypeException", "UnsupportedFileError", PyExc_ValueError},
        {"BGeoReferenceNotSupportedException", "NotSupportedError", PyExc_ValueError},
        {"BFileContentNotValidException", "InvalidContentError", PyExc_ValueError},
        {"BGeoReferenceInvalidReferenceFileException", "InvalidFileError", PyExc_ValueError},
        {"BGeoReferenceInvalidTransformException", "InvalidTransformError", PyExc_ValueError},
        {"BGeoReferenceInvalidCoordSysException", "InvalidCoordSysError", PyExc_ValueError},
        {"BCoordSysException", "InvalidCoordSysError", PyExc_ValueError},
        {"BReadParametersException", "ParameterError", PyExc_ValueError}};
    static_assert(std::size(rows) == std::size(classes));
    return rows;
}

PyObject* ClassOf(const Tellurion::BException& error) {
    for (std::size_t i = 0; i < std::size(classes); ++i)
        if (std::strcmp(Rows()[i].type, error.GetTypeName()) == 0) return classes[i];
    return base;
}

void Raise(PyObject* type, const Tellurion::BString& text, const Tellurion::BString& message,
           const Tellurion::BString& source, const Tellurion::BString& detail) {
    py::object raised = py::reinterpret_borrow<py::object>(type)(text);
    raised.attr("message") = message;
    raised.attr("source") = source;
    raised.attr("detail") = detail;
    PyErr_SetObject(type, raised.ptr());
}

void Translate(std::exception_ptr failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const Tellurion::BException& error) {
        Raise(ClassOf(error), error.GetDetailedMessage(), error.GetMessageText(), error.GetSource(),
              error.GetDetail());
    }
}

}  // namespace

void DefineFailures(py::module_& module) {
    base = PyErr_NewException("mapanchor.Error", nullptr, nullptr);
    if (!base) throw py::error_already_set();
    module.add_object("Error", py::handle(base));
    for (std::size_t i = 0; i < std::size(classes); ++i) {
        if (py::hasattr(module, Rows()[i].name)) {  // two of the library's have one name
            classes[i] = module.attr(Rows()[i].name).ptr();
            continue;
        }
        const py::tuple bases = py::make_tuple(py::handle(base), py::handle(Rows()[i].builtin));
        const std::string name = std::string("mapanchor.") + Rows()[i].name;
        classes[i] = PyErr_NewException(name.c_str(), bases.ptr(), nullptr);
        if (!classes[i]) throw py::error_already_set();
        module.add_object(Rows()[i].name, py::handle(classes[i]));
    }
    py::register_exception_translator(&Translate);
}
