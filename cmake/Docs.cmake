# The API reference, generated from the public headers into build/docs/html
# by the `docs` target; the target exists only where doxygen is installed
# (Debian package doxygen).
find_program(KAVRO_DOXYGEN doxygen)
if(KAVRO_DOXYGEN)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/docs
        COMMAND ${KAVRO_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
        WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
        COMMENT "API reference into ${PROJECT_BINARY_DIR}/docs/html"
        VERBATIM)
endif()
