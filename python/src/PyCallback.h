// A Python callable that the library may call, and drop, from any thread.
// A call takes the GIL; an exception the callable raises is reported through
// sys.unraisablehook instead of ending the library's thread or the process.
#pragma once

#include <memory>
#include <utility>

#include <pybind11/pybind11.h>

namespace kavro_python {

namespace py = pybind11;

class PyCallback {
public:
    explicit PyCallback(py::object callable) : callable_(std::move(callable)) {}
    ~PyCallback() {
        // The last holder may be a library thread: drop the reference under the GIL.
        if (Py_IsInitialized()) {
            py::gil_scoped_acquire gil;
            callable_ = py::object();
        } else {
            callable_.release();  // too late to touch Python objects: leak it
        }
    }
    PyCallback(const PyCallback&) = delete;
    PyCallback& operator=(const PyCallback&) = delete;

    template <typename... Arguments>
    void operator()(Arguments&&... arguments) const noexcept {
        if (!Py_IsInitialized()) return;
        py::gil_scoped_acquire gil;
        try {
            callable_(std::forward<Arguments>(arguments)...);
        } catch (py::error_already_set& error) {
            error.discard_as_unraisable(callable_);
        } catch (const std::exception& error) {
            PyErr_SetString(PyExc_RuntimeError, error.what());
            PyErr_WriteUnraisable(callable_.ptr());
        }
    }

private:
    py::object callable_;
};

// Shared, so that copies of a library-side handler never touch Python
// reference counts outside the GIL.
inline std::shared_ptr<PyCallback> makeCallback(py::object callable) {
    return std::make_shared<PyCallback>(std::move(callable));
}

}  // namespace kavro_python
