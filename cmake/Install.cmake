# Installation, in three components that the Debian packages follow:
#   library  the shared library with its SONAME link, and the error dictionary
#   dev      headers, the .so link, pkg-config file and CMake package
#   tools    kavro-sim, its scenarios and stand-in D2XX library, man pages,
#            the udev rule (the command-line tools add themselves here)
#   python   the Python package kavro (python/CMakeLists.txt)
# Everything is found relative to where it is installed, so an install into
# any prefix works, including a private one as an ordinary user.
include(CMakePackageConfigHelpers)

install(TARGETS KavroLibrary
    EXPORT KavroLibraryTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT dev
    PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KavroLibrary COMPONENT dev)
install(EXPORT KavroLibraryTargets
    NAMESPACE KavroLibrary::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/KavroLibrary
    COMPONENT dev)
configure_package_config_file(cmake/KavroLibraryConfig.cmake.in
    ${PROJECT_BINARY_DIR}/KavroLibraryConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/KavroLibrary)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KavroLibraryConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/KavroLibraryConfig.cmake
    ${PROJECT_BINARY_DIR}/KavroLibraryConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/KavroLibrary
    COMPONENT dev)

# The pkg-config file names its prefix relative to its own folder.
file(RELATIVE_PATH KAVRO_PC_PREFIX_FROM_PCFILEDIR
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" KAVRO_PC_PREFIX_FROM_PCFILEDIR "${KAVRO_PC_PREFIX_FROM_PCFILEDIR}")
configure_file(cmake/KavroLibrary.pc.in ${PROJECT_BINARY_DIR}/KavroLibrary.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/KavroLibrary.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT dev)

# The library reads its error texts from one fixed path whatever the
# prefix. A copy always goes into the prefix; the fixed path gets it when
# the install may write there (root, or a package build's staging folder).
install(FILES data/ErrLang_en.dat
    DESTINATION ${CMAKE_INSTALL_DATADIR}/kavrolinuxlibrary/languages
    COMPONENT library)
install(CODE "
    set(kavro_source \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/kavrolinuxlibrary/languages/ErrLang_en.dat\")
    set(kavro_target \"\$ENV{DESTDIR}${KAVRO_DICTIONARY_DIR}/ErrLang_en.dat\")
    if(NOT \"\$ENV{DESTDIR}\${kavro_source}\" STREQUAL kavro_target)
        execute_process(
            COMMAND \${CMAKE_COMMAND} -E make_directory \"\$ENV{DESTDIR}${KAVRO_DICTIONARY_DIR}\"
            OUTPUT_QUIET ERROR_QUIET)
        execute_process(
            COMMAND \${CMAKE_COMMAND} -E copy_if_different \"\$ENV{DESTDIR}\${kavro_source}\" \"\${kavro_target}\"
            RESULT_VARIABLE kavro_copied OUTPUT_QUIET ERROR_QUIET)
        if(kavro_copied EQUAL 0)
            message(STATUS \"Installing: \${kavro_target}\")
        else()
            message(STATUS \"The error texts are read from \${kavro_source} (${KAVRO_DICTIONARY_DIR} is not writable)\")
        endif()
    endif()
    " COMPONENT library)

install(FILES data/udev/60-kavro-usbim.rules
    DESTINATION lib/udev/rules.d
    COMPONENT tools)

# Manual pages of the tools, compressed as Debian installs them.
function(kavro_install_man page)
    get_filename_component(name ${page} NAME)
    set(compressed ${PROJECT_BINARY_DIR}/man/${name}.gz)
    add_custom_command(OUTPUT ${compressed}
        COMMAND ${CMAKE_COMMAND} -E copy ${page} ${PROJECT_BINARY_DIR}/man/${name}
        COMMAND gzip -9nf ${PROJECT_BINARY_DIR}/man/${name}
        DEPENDS ${page} VERBATIM)
    add_custom_target(man-${name} ALL DEPENDS ${compressed})
    install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endfunction()

if(TARGET kavro-sim)
    kavro_install_man(${PROJECT_SOURCE_DIR}/data/man/kavro-sim.1)
endif()
if(TARGET kavro)
    kavro_install_man(${PROJECT_SOURCE_DIR}/tools/kavro/kavro.1)
endif()
