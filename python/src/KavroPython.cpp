// The extension module kavro._kavro; the package kavro re-exports it.
#include "PyBindings.h"

PYBIND11_MODULE(_kavro, m) {
    m.doc() = "Networks of digital measurement modules: the KavroLibrary classes for Python.";
    kavro_python::bindEnums(m);
    kavro_python::bindErrors(m);
    kavro_python::bindModules(m);
    kavro_python::bindWireless(m);
    kavro_python::bindModes(m);
    kavro_python::bindNetworks(m);
    kavro_python::bindServer(m);
    kavro_python::bindDynamic(m);
    kavro_python::bindSimulator(m);
}
