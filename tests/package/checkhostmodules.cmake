# SPDX-License-Identifier: MIT
# Run by CTest as a script: builds and installs a host's own platform modules (hostmodules/),
# builds the library against them with VEXA_HOST_PLATFORM_MODULES, installs it, checks that no
# reference module came along, then builds and runs a host (hostconsumer/) against both. Each
# build uses two jobs, as the rest of CI does.
foreach(var SOURCE_DIR WORK_DIR GENERATOR CXX_COMPILER)
    if(NOT DEFINED ${var})
        message(FATAL_ERROR "checkhostmodules.cmake needs -D${var}=...")
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
set(host_prefix "${WORK_DIR}/host")
set(vexa_prefix "${WORK_DIR}/vexa")
# The compiler launcher (ccache) of the outer build, if any, and no build type: these builds
# are checked for building and linking, not debugged.
set(common_options -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    "-DCMAKE_CXX_COMPILER_LAUNCHER=${CXX_COMPILER_LAUNCHER}"
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
    "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}"
    "-DCMAKE_SHARED_LINKER_FLAGS=${SHARED_LINKER_FLAGS}")

run_step("host modules configure" "${CMAKE_COMMAND}"
    -S "${SOURCE_DIR}/tests/package/hostmodules" -B "${WORK_DIR}/host-build" ${common_options}
    "-DVEXA_SOURCE_DIR=${SOURCE_DIR}")
run_step("host modules build" "${CMAKE_COMMAND}" --build "${WORK_DIR}/host-build" -j 2)
run_step("host modules install" "${CMAKE_COMMAND}" --install "${WORK_DIR}/host-build"
    --prefix "${host_prefix}")

run_step("library configure" "${CMAKE_COMMAND}"
    -S "${SOURCE_DIR}" -B "${WORK_DIR}/library-build" ${common_options}
    -DVEXA_HOST_PLATFORM_MODULES=ON
    -DVEXA_HOST_PLATFORM_PACKAGE=vexahostmodules
    -DVEXA_BUILD_TESTING_LIBRARY=OFF
    -DVEXA_WERROR=ON
    "-DCMAKE_PREFIX_PATH=${host_prefix}")
run_step("library build" "${CMAKE_COMMAND}" --build "${WORK_DIR}/library-build" -j 2)
run_step("library install" "${CMAKE_COMMAND}" --install "${WORK_DIR}/library-build"
    --prefix "${vexa_prefix}")

file(GLOB_RECURSE installed RELATIVE "${vexa_prefix}" "${vexa_prefix}/*")
foreach(file IN LISTS installed)
    if(file MATCHES "vexainputsourcewidget-platform|libquandel|libzq|libxj|libvexa_|sigslot")
        message(FATAL_ERROR "a reference module was installed: ${file}")
    endif()
endforeach()

# Both prefixes, through the environment: a ";" list would be split into two arguments here.
run_step("host configure" "${CMAKE_COMMAND}" -E env
    "CMAKE_PREFIX_PATH=${vexa_prefix}:${host_prefix}"
    "${CMAKE_COMMAND}"
    -S "${SOURCE_DIR}/tests/package/hostconsumer" -B "${WORK_DIR}/consumer-build" ${common_options})
run_step("host build" "${CMAKE_COMMAND}" --build "${WORK_DIR}/consumer-build" -j 2)
run_step("host run" "${CMAKE_COMMAND}" -E env
    "LD_LIBRARY_PATH=${vexa_prefix}/lib:${host_prefix}/lib"
    "${WORK_DIR}/consumer-build/hostconsumer")
if(NOT step_output MATCHES "hostconsumer: the panel ran [0-9]+ tasks on the host's runtime")
    message(FATAL_ERROR "the host ran but did not confirm its check:\n${step_output}")
endif()
message(STATUS "${step_output}")
