# Debian packages, one per install component (cmake/Install.cmake):
#   libkavrolibrary1     the library and its error dictionary
#   libkavrolibrary-dev  headers, pkg-config file, CMake package
#   kavro-tools          kavro-sim and the command-line tools, man pages,
#                        the udev rule
#   python3-kavro        the Python package kavro (when KAVRO_BUILD_PYTHON is on)
# scripts/package builds them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kavrolibrary)
set(CPACK_PACKAGE_VENDOR "KavroLibrary developers")
set(CPACK_PACKAGE_CONTACT "KavroLibrary developers <kavrolibrary@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libkavrolibrary${PROJECT_VERSION_MAJOR})
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "Library for networks of digital measurement modules\n The shared library through which an application reads gauging probes,\n encoders, digital I/O, analogue inputs and wireless hand tools behind a\n USB, Ethernet or RS-232 interface module, with its error dictionary.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libkavrolibrary-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS library)
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "Library for networks of digital measurement modules (development files)\n Headers, pkg-config file and CMake package of libKavroLibrary.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME kavro-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DEPENDS library)
# kavro links the library in its sibling package, which dpkg-shlibdeps
# cannot see: the component dependency names it, the rest is listed here.
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libc6, libstdc++6, libgcc-s1")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
    "Tools for networks of digital measurement modules\n The kavro command-line tool, the kavro-sim simulated bus with its\n scenarios, their manual pages, and a udev rule that gives USB interface\n modules to the plugdev group and the seated user.")

set(CPACK_COMPONENTS_ALL library dev tools)

if(TARGET kavro_python)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-kavro)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    set(CPACK_COMPONENT_PYTHON_DEPENDS library)
    # dpkg-shlibdeps cannot see the library in its sibling package; the
    # component dependency names it, the rest is listed here.
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "libc6, libstdc++6, python3 (>= 3.11), python3 (<< 3.12), python3-numpy")
    # The stand-in D2XX library for simulated USB controllers comes with the tools.
    set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS "kavro-tools, python3-matplotlib")
    set(CPACK_COMPONENT_PYTHON_DESCRIPTION
        "Python bindings for networks of digital measurement modules\n The Python package kavro: the classes of libKavroLibrary for python3, with\n buffered read-outs and dynamic data as numpy arrays and the simulated bus\n in process.")
    list(APPEND CPACK_COMPONENTS_ALL python)
endif()
include(CPack)
