# SPDX-License-Identifier: MIT
# Build helpers shared by every target of the project.

# The project's own code builds with these warnings (CI turns them into errors) and Qt's
# hygiene: no `signals`/`slots`/`emit` keywords (Q_SIGNALS, Q_SLOTS, Q_EMIT, which do not clash
# with other libraries' names), no silent conversion between QString and 8-bit strings (each says
# its encoding), and string concatenation through QStringBuilder (one allocation per result).
# Hosts compile the public headers without these, as the package test does.
function(vexa_set_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wshadow $<$<BOOL:${VEXA_WERROR}>:-Werror>)
    target_compile_definitions(${target} PRIVATE
        QT_NO_KEYWORDS
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_USE_QSTRINGBUILDER)
endfunction()

# vexa_add_module(<target>
#     NAMESPACE <namespace> NAME <exported name>
#     [PART platform|library|testing]              default: platform
#     [HEADER_ONLY]
#     [EXPORT_HEADER <path of the generated export header, relative to the include root>]
#     [EXPORT_CUSTOM_CONTENT <text appended to the export header>]
#     [INCLUDE_DIR <source include root>]          default: <current dir>/include
#     [INCLUDE_DESTINATION <install include root>] default: vexainputsourcewidget-platform; "." for include/ itself
#     [SOURCES ...] [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
#
# Adds one library with its namespaced alias (<namespace>::<name>) and installs it with its
# headers into the export set of its part, so that the installed package offers the same target
# names as the build tree. The reference platform modules are installed only when the library
# is built with them (VEXA_HOST_PLATFORM_MODULES off).
function(vexa_add_module target)
    cmake_parse_arguments(ARG "HEADER_ONLY"
        "NAMESPACE;NAME;PART;EXPORT_HEADER;EXPORT_CUSTOM_CONTENT;INCLUDE_DIR;INCLUDE_DESTINATION"
        "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
    if(NOT ARG_PART)
        set(ARG_PART platform)
    endif()
    if(NOT ARG_INCLUDE_DIR)
        set(ARG_INCLUDE_DIR "${CMAKE_CURRENT_SOURCE_DIR}/include")
    endif()
    if(NOT DEFINED ARG_INCLUDE_DESTINATION)
        set(ARG_INCLUDE_DESTINATION "vexainputsourcewidget-platform")
    endif()
    set(include_destination "${CMAKE_INSTALL_INCLUDEDIR}/${ARG_INCLUDE_DESTINATION}")

    # A distribution splits the package by these install components: the shared libraries,
    # the files a host builds against, and the test helpers with everything of their own.
    if(ARG_PART STREQUAL "testing")
        set(runtime_component Testing)
        set(development_component Testing)
    else()
        set(runtime_component Runtime)
        set(development_component Development)
    endif()

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
        # The export header of a static library expands to nothing only when this is defined,
        # for the library and for everything that includes its headers.
        # Static archives are position-independent all the same, so that a host can link them
        # into a shared library of its own.
        if(NOT BUILD_SHARED_LIBS)
            string(TOUPPER "${target}_STATIC_DEFINE" static_define)
            target_compile_definitions(${target} PUBLIC ${static_define})
            set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
        endif()
        target_include_directories(${target} PUBLIC
            $<BUILD_INTERFACE:${ARG_INCLUDE_DIR}>
            $<BUILD_INTERFACE:${generated_include}>
            $<INSTALL_INTERFACE:${include_destination}>)
        target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
        set_target_properties(${target} PROPERTIES
            VERSION ${PROJECT_VERSION}
            SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
        vexa_set_warnings(${target})
    endif()

    add_library(${ARG_NAMESPACE}::${ARG_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${ARG_NAME})

    if(ARG_PART STREQUAL "platform" AND VEXA_HOST_PLATFORM_MODULES)
        return()
    endif()
    if(NOT ARG_HEADER_ONLY)
        get_filename_component(export_dir "${ARG_EXPORT_HEADER}" DIRECTORY)
        install(FILES "${generated_include}/${ARG_EXPORT_HEADER}"
            DESTINATION "${include_destination}/${export_dir}"
            COMPONENT ${development_component})
    endif()
    install(DIRECTORY "${ARG_INCLUDE_DIR}/" DESTINATION "${include_destination}"
        COMPONENT ${development_component})
    if(ARG_PART STREQUAL "platform")
        set(export_set vexa_platform_${ARG_NAMESPACE}_targets)
        set_property(GLOBAL APPEND PROPERTY VEXA_PLATFORM_NAMESPACES ${ARG_NAMESPACE})
    else()
        set(export_set vexa_${ARG_PART}_targets)
    endif()
    install(TARGETS ${target}
        EXPORT ${export_set}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT ${runtime_component}
            NAMELINK_COMPONENT ${development_component}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT ${development_component}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
            COMPONENT ${runtime_component})
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

# Installs the export sets and the package configuration. The library, the reference platform
# modules and the test helpers each have their own targets file, so that the configuration
# loads only what a host asks for (see cmake/vexainputsourcewidgetConfig.cmake.in).
function(vexa_install_package)
    set(config_destination "${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME}")

    get_property(namespaces GLOBAL PROPERTY VEXA_PLATFORM_NAMESPACES)
    list(REMOVE_DUPLICATES namespaces)
    foreach(namespace IN LISTS namespaces)
        install(EXPORT vexa_platform_${namespace}_targets
            NAMESPACE ${namespace}::
            FILE ${PROJECT_NAME}-platform-${namespace}-targets.cmake
            DESTINATION "${config_destination}"
            COMPONENT Development)
    endforeach()
    install(EXPORT vexa_library_targets
        NAMESPACE ${PROJECT_NAME}::
        FILE ${PROJECT_NAME}-targets.cmake
        DESTINATION "${config_destination}"
        COMPONENT Development)
    if(TARGET vexainputsourcewidget_testing)
        install(EXPORT vexa_testing_targets
            NAMESPACE ${PROJECT_NAME}::
            FILE ${PROJECT_NAME}-testing-targets.cmake
            DESTINATION "${config_destination}"
            COMPONENT Testing)
    endif()

    # The platform targets the library's link interface names: those its public headers use,
    # and in a static build (as $<LINK_ONLY:...>) the private ones too, since the host's link
    # then needs their libraries. A package built against the host's modules checks for these.
    get_target_property(interface_libs vexainputsourcewidget INTERFACE_LINK_LIBRARIES)
    set(needed_targets "")
    foreach(lib IN LISTS interface_libs)
        if(lib MATCHES "^\\$<LINK_ONLY:(.+)>$")
            set(lib "${CMAKE_MATCH_1}")
        endif()
        if(lib IN_LIST VEXA_PLATFORM_MODULE_TARGETS)
            list(APPEND needed_targets "${lib}")
        endif()
    endforeach()
    list(REMOVE_DUPLICATES needed_targets)

    set(VEXA_PLATFORM_NAMESPACES "${namespaces}")
    set(VEXA_NEEDED_PLATFORM_TARGETS "${needed_targets}")
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
        DESTINATION "${config_destination}"
        COMPONENT Development)
endfunction()
