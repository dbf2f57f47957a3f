// The parts of the `kavro` module, each binding one area of the library.
#pragma once

#include <pybind11/pybind11.h>

#include "PyEnums.h"

namespace kavro_python {

namespace py = pybind11;

// Calls that wait on the bus run without the GIL, so that other Python
// threads go on meanwhile.
using WithoutGil = py::call_guard<py::gil_scoped_release>;

void bindEnums(py::module_& m);
void bindErrors(py::module_& m);
void bindServer(py::module_& m);
void bindNetworks(py::module_& m);
void bindModules(py::module_& m);
void bindWireless(py::module_& m);  // after bindModules
void bindModes(py::module_& m);
void bindDynamic(py::module_& m);  // after bindNetworks and bindServer
void bindSimulator(py::module_& m);

}  // namespace kavro_python
