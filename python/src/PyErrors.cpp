// Library errors reach Python as kavro.KavroError, a RuntimeError carrying
// the error code (`code`) and its text (`text`). The library's other
// errors keep pybind11's mapping (std::runtime_error to RuntimeError).
#include <pybind11/eval.h>

#include "KavroException.h"
#include "PyBindings.h"

namespace kavro_python {

namespace {

constexpr const char* kErrorClass = R"py(
class KavroError(RuntimeError):
    """An error the library reports with a code: `code` and its `text`."""

    def __init__(self, code, text):
        super().__init__(code, text)
        self.code = code
        self.text = text

    def __str__(self):
        return f"{self.text} (code 0x{self.code:X})"
)py";

PyObject* errorClass = nullptr;  // kept for the life of the process

}  // namespace

void bindErrors(py::module_& m) {
    py::dict scope;
    scope["__builtins__"] = py::module_::import("builtins");
    scope["__name__"] = "kavro";
    py::exec(kErrorClass, scope);
    py::object type = scope["KavroError"];
    errorClass = type.inc_ref().ptr();
    m.attr("KavroError") = type;

    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown) std::rethrow_exception(thrown);
        } catch (const KavroLibrary::KavroException& error) {
            py::object code = py::cast(static_cast<KavroLibrary::eKavroErrors>(error.ErrorCode));
            py::tuple arguments = py::make_tuple(code, error.Message);
            PyErr_SetObject(errorClass, arguments.ptr());
        }
    });
}

}  // namespace kavro_python
