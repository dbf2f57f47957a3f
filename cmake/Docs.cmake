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

# Every public class and function says what it is for: the reference builds
# without a warning.
if(KAVRO_DOXYGEN AND KAVRO_BUILD_TESTS)
    add_test(NAME Docs.EveryPublicDeclarationIsDocumented
        COMMAND sh -c "mkdir -p docs && '${KAVRO_DOXYGEN}' Doxyfile && if [ -s docs/warnings.log ]; then cat docs/warnings.log; exit 1; fi"
        WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
    set_tests_properties(Docs.EveryPublicDeclarationIsDocumented PROPERTIES LABELS docs)
endif()
