# Installs the project, then moves what was installed: it must work wherever it lies.
#   cmake -D BUILD=DIR -D PREFIX=DIR -P stage.cmake
file(REMOVE_RECURSE "${PREFIX}" "${PREFIX}-at-first")
execute_process(
    COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}-at-first"
    COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${PREFIX}-at-first" "${PREFIX}")
