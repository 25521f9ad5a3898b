# Toolchain: the newest clang that is installed. With QOS_TIDY=ON, its clang-tidy looks at each
# source that is compiled.
function(newest_clang OUT PROGRAM)
    execute_process(COMMAND "${CMAKE_CURRENT_LIST_DIR}/../scripts/clang" "${PROGRAM}"
        OUTPUT_VARIABLE name OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(${OUT} "${name}" PARENT_SCOPE)
endfunction()

newest_clang(CMAKE_CXX_COMPILER clang++)
if(QOS_TIDY)
    newest_clang(tidy clang-tidy)
    set(CMAKE_CXX_CLANG_TIDY "${tidy};--quiet")
endif()
