# Run by CTest as a script: install, relocate, build the consumer against the package, run it.
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

run_step("install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${stage}")

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

run_step("example run" "${WORK_DIR}/build/embedpanel" --quit-after 500)
if(NOT step_output MATCHES "embedpanel: shut down")
    message(FATAL_ERROR "the example did not shut down:\n${step_output}")
endif()
