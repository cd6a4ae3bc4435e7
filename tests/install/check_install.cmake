# Installs the build into a new tree, and builds the consumer against that tree.
set(prefix ${WORK_DIR}/prefix)
set(build ${WORK_DIR}/consumer)
file(REMOVE_RECURSE ${prefix} ${build})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${output}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
run(${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${build} -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
    -Dvelmsdk_DIR=${prefix}/lib/cmake/velmsdk -DEXAMPLES_DIR=${EXAMPLES_DIR})
run(${CMAKE_COMMAND} --build ${build})
foreach(file bin/velmsdk.dll include/velmsdk/sdk/VelmSdk.h)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "the installed tree has no ${file}")
  endif()
endforeach()
