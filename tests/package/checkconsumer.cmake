# SPDX-License-Identifier: MIT
# Run by CTest as a script: install by components, check the split, relocate, build the
# consumer against the package, run it.
foreach(var BUILD_DIR CONSUMER_SOURCE_DIR WORK_DIR GENERATOR CXX_COMPILER)
    if(NOT DEFINED ${var})
        message(FATAL_ERROR "checkconsumer.cmake needs -D${var}=...")
    endif()
endforeach()

function(run_step what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${what} failed (${result}):\n${out}\n${err}")
    endif()
    set(step_output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
set(stage "${WORK_DIR}/stage")
set(relocated "${WORK_DIR}/moved/prefix")

# A distribution installs each component into a package of its own; together they must hold
# everything a plain install does, and nothing may fall outside them.
foreach(component Runtime Development Testing)
    run_step("install ${component}" "${CMAKE_COMMAND}" --install "${BUILD_DIR}"
        --component ${component} --prefix "${WORK_DIR}/${component}")
    run_step("install ${component} into the stage" "${CMAKE_COMMAND}" --install "${BUILD_DIR}"
        --component ${component} --prefix "${stage}")
endforeach()
run_step("install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/whole")
file(GLOB_RECURSE whole_files LIST_DIRECTORIES false RELATIVE "${WORK_DIR}/whole"
    "${WORK_DIR}/whole/*")
file(GLOB_RECURSE staged_files LIST_DIRECTORIES false RELATIVE "${stage}" "${stage}/*")
if(NOT whole_files STREQUAL staged_files)
    message(FATAL_ERROR "the install components miss files of the whole install:\n"
        "whole: ${whole_files}\ncomponents: ${staged_files}")
endif()

function(expect_files component regex should)
    file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE "${WORK_DIR}/${component}"
        "${WORK_DIR}/${component}/*")
    list(FILTER files INCLUDE REGEX "${regex}")
    if(should AND NOT files)
        message(FATAL_ERROR "${component} has no file matching ${regex}")
    elseif(NOT should AND files)
        message(FATAL_ERROR "${component} should not hold ${files}")
    endif()
endfunction()
# Runtime: the versioned shared libraries, the language files, the theme and the licence; the
# unversioned name links (or the static archives), headers and CMake files are for building, so
# Development's.
expect_files(Runtime "\\.qm$" TRUE)
expect_files(Runtime "/LICENSE$" TRUE)
expect_files(Runtime "\\.so$|\\.a$|\\.h$|\\.cmake$|testing" FALSE)
expect_files(Development "vexainputsourcewidget/version\\.h$" TRUE)
expect_files(Development "vexainputsourcewidget_version\\.h$" TRUE)
expect_files(Development "vexainputsourcewidgetConfig\\.cmake$" TRUE)
expect_files(Development "\\.so\\.[0-9]|testing" FALSE)
expect_files(Testing "testing/framefactory\\.h$" TRUE)
expect_files(Testing "testing-targets" TRUE)
expect_files(Testing "libvexainputsourcewidget\\.|/version\\.h$" FALSE)
if(SHARED_LIBS)
    expect_files(Runtime "libvexainputsourcewidget\\.so\\.[0-9]" TRUE)
    expect_files(Development "libvexainputsourcewidget\\.so$" TRUE)
    expect_files(Testing "libvexainputsourcewidget_testing\\.so$" TRUE)
else()
    expect_files(Development "libvexainputsourcewidget\\.a$" TRUE)
    expect_files(Testing "libvexainputsourcewidget_testing\\.a$" TRUE)
endif()

# A package that remembers where it was installed breaks here.
file(MAKE_DIRECTORY "${WORK_DIR}/moved")
file(RENAME "${stage}" "${relocated}")

run_step("consumer configure" "${CMAKE_COMMAND}"
    -S "${CONSUMER_SOURCE_DIR}" -B "${WORK_DIR}/build" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
    "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}"
    "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}"
    "-DCMAKE_PREFIX_PATH=${relocated}")
run_step("consumer build" "${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
run_step("consumer run" "${WORK_DIR}/build/consumer")

if(NOT step_output MATCHES "consumer: all modules answered")
    message(FATAL_ERROR "the consumer ran but did not confirm its checks:\n${step_output}")
endif()
message(STATUS "${step_output}")

run_step("testing helpers run" "${WORK_DIR}/build/testinghelpers")
if(NOT step_output MATCHES "testinghelpers: the helpers answered")
    message(FATAL_ERROR "the test helpers did not answer:\n${step_output}")
endif()

run_step("example run" "${WORK_DIR}/build/embedpanel" --quit-after 500)
if(NOT step_output MATCHES "embedpanel: shut down")
    message(FATAL_ERROR "the example did not shut down:\n${step_output}")
endif()
