# Build helpers shared by every target of the project.

# The project's own code builds with these warnings; CI turns them into errors.
function(vexa_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra $<$<BOOL:${VEXA_WERROR}>:-Werror>)
endfunction()

# vexa_add_module(<target>
#     NAMESPACE <namespace> NAME <exported name>
#     [HEADER_ONLY]
#     [EXPORT_HEADER <path of the generated export header, relative to the include root>]
#     [EXPORT_CUSTOM_CONTENT <text appended to the export header>]
#     [INCLUDE_DIR <source include root>]          default: <current dir>/include
#     [INCLUDE_DESTINATION <install include root>] default: vexainputsourcewidget-platform; "." for include/ itself
#     [SOURCES ...] [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
#
# Adds one library with its namespaced alias (<namespace>::<name>), installs its headers
# and adds it to the export set of its namespace, so that the installed package offers the
# same target names as the build tree.
function(vexa_add_module target)
    cmake_parse_arguments(ARG "HEADER_ONLY"
        "NAMESPACE;NAME;EXPORT_HEADER;EXPORT_CUSTOM_CONTENT;INCLUDE_DIR;INCLUDE_DESTINATION"
        "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
    if(NOT ARG_INCLUDE_DIR)
        set(ARG_INCLUDE_DIR "${CMAKE_CURRENT_SOURCE_DIR}/include")
    endif()
    if(NOT DEFINED ARG_INCLUDE_DESTINATION)
        set(ARG_INCLUDE_DESTINATION "vexainputsourcewidget-platform")
    endif()
    set(include_destination "${CMAKE_INSTALL_INCLUDEDIR}/${ARG_INCLUDE_DESTINATION}")

    if(ARG_HEADER_ONLY)
        add_library(${target} INTERFACE)
        target_include_directories(${target} INTERFACE
            $<BUILD_INTERFACE:${ARG_INCLUDE_DIR}>
            $<INSTALL_INTERFACE:${include_destination}>)
        target_link_libraries(${target} INTERFACE ${ARG_PUBLIC_LIBS})
    else()
        add_library(${target} ${ARG_SOURCES})
        set(generated_include "${CMAKE_CURRENT_BINARY_DIR}/include")
        set(custom_content "${ARG_EXPORT_CUSTOM_CONTENT}")
        generate_export_header(${target}
            EXPORT_FILE_NAME "${generated_include}/${ARG_EXPORT_HEADER}"
            CUSTOM_CONTENT_FROM_VARIABLE custom_content)
        target_include_directories(${target} PUBLIC
            $<BUILD_INTERFACE:${ARG_INCLUDE_DIR}>
            $<BUILD_INTERFACE:${generated_include}>
            $<INSTALL_INTERFACE:${include_destination}>)
        target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
        set_target_properties(${target} PROPERTIES
            VERSION ${PROJECT_VERSION}
            SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
        vexa_set_warnings(${target})
        get_filename_component(export_dir "${ARG_EXPORT_HEADER}" DIRECTORY)
        install(FILES "${generated_include}/${ARG_EXPORT_HEADER}"
            DESTINATION "${include_destination}/${export_dir}")
    endif()

    add_library(${ARG_NAMESPACE}::${ARG_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${ARG_NAME})
    install(DIRECTORY "${ARG_INCLUDE_DIR}/" DESTINATION "${include_destination}")
    install(TARGETS ${target}
        EXPORT vexa_${ARG_NAMESPACE}_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    set_property(GLOBAL APPEND PROPERTY VEXA_EXPORT_NAMESPACES ${ARG_NAMESPACE})
endfunction()

# vexa_add_qt_test(<source> [THREADS] [LIBS ...] [DEFINITIONS ...])
#
# One Qt Test executable per source file, registered with CTest under the folder it
# lives in (for example "platform/runtime/tst_zqruntime") and run on the offscreen platform.
# THREADS also labels it "threads": it drives real runtime or frame threads, so CI runs it under
# the thread sanitizer too (scripts/test.sh tsan threads).
function(vexa_add_qt_test source)
    cmake_parse_arguments(ARG "THREADS" "" "LIBS;DEFINITIONS" ${ARGN})
    get_filename_component(name "${source}" NAME_WE)
    file(RELATIVE_PATH area "${PROJECT_SOURCE_DIR}/tests" "${CMAKE_CURRENT_SOURCE_DIR}")
    add_executable(${name} "${source}")
    # Qt Widgets and Boost for every test, so that each one compiles with the macros the shared
    # precompiled header was built with.
    target_link_libraries(${name} PRIVATE Qt5::Test Qt5::Widgets Boost::headers ${ARG_LIBS})
    target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS})
    vexa_set_warnings(${name})
    if(TARGET vexa_test_pch)
        target_precompile_headers(${name} REUSE_FROM vexa_test_pch)
    endif()
    set(labels "${area}")
    if(ARG_THREADS)
        list(APPEND labels threads)
    endif()
    add_test(NAME "${area}/${name}" COMMAND ${name})
    set_tests_properties("${area}/${name}" PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
        TIMEOUT 300
        LABELS "${labels}")
endfunction()

# Installs one export set per namespace and the package configuration that loads them all.
function(vexa_install_package)
    get_property(namespaces GLOBAL PROPERTY VEXA_EXPORT_NAMESPACES)
    list(REMOVE_DUPLICATES namespaces)
    set(config_destination "${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME}")
    foreach(namespace IN LISTS namespaces)
        install(EXPORT vexa_${namespace}_targets
            NAMESPACE ${namespace}::
            FILE ${namespace}-targets.cmake
            DESTINATION "${config_destination}")
    endforeach()

    set(VEXA_EXPORT_NAMESPACES "${namespaces}")
    set(VEXA_TRANSLATIONS_INSTALL_DIR "${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME}/translations")
    set(VEXA_THEMES_INSTALL_DIR "${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME}/themes")
    configure_package_config_file(
        "${PROJECT_SOURCE_DIR}/cmake/${PROJECT_NAME}Config.cmake.in"
        "${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake"
        INSTALL_DESTINATION "${config_destination}"
        PATH_VARS VEXA_TRANSLATIONS_INSTALL_DIR VEXA_THEMES_INSTALL_DIR)
    write_basic_package_version_file(
        "${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake"
        VERSION ${PROJECT_VERSION}
        COMPATIBILITY SameMinorVersion)
    install(FILES
        "${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake"
        "${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake"
        DESTINATION "${config_destination}")
endfunction()
