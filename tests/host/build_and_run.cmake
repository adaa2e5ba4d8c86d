# Configures, builds and runs the outside project in a folder of its own.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${FOLDER})
# Not optimized, and several files compiled as one: it is to be quick.
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER} -G ${GENERATOR} -DLUMORA_CHECKOUT=${CHECKOUT} -DLUMORA_QT=OFF
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_UNITY_BUILD=ON)
run(${CMAKE_COMMAND} --build ${FOLDER})
file(READ ${FOLDER}/warnings.txt flags)
if(flags MATCHES "-Werror")
  message(FATAL_ERROR "Warnings of the library are errors for its host: ${flags}")
endif()
run(${FOLDER}/programs/host)
