# How this project compiles and links its own code, on one interface target. Nothing of it reaches
# those who build against the installed platform.
add_library(project_options INTERFACE)
set_target_properties(project_options PROPERTIES INTERFACE_POSITION_INDEPENDENT_CODE ON)

include(CheckPIESupported)
check_pie_supported()

target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
    $<$<BOOL:${QOS_WERROR}>:-Werror>
    # GCC 12 takes the unused room of a std::variant that is moved for an uninitialised value.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
    -fvisibility=hidden
    -fvisibility-inlines-hidden
    # Unique symbols would keep an unloaded plug-in mapped.
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

if(QOS_SANITIZE)
    target_compile_options(project_options INTERFACE
        -fsanitize=${QOS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_options INTERFACE -fsanitize=${QOS_SANITIZE})
else()
    # The sanitizers' run-time symbols are met by the program alone.
    target_link_options(project_options INTERFACE -Wl,--no-undefined)
endif()

if(QOS_HARDEN)
    target_compile_options(project_options INTERFACE
        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong -fstack-clash-protection
        # A backtrace names the function that ran, not another one with equal code.
        $<$<CXX_COMPILER_ID:GNU>:-fno-ipa-icf>)
    target_link_options(project_options INTERFACE
        -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
    # All symbols are bound at load time anyway: calls need no stubs for lazy binding, and those of
    # a library to itself need not pass through a table.
    target_compile_options(project_options INTERFACE -fno-plt)
    target_link_options(project_options INTERFACE -Wl,-Bsymbolic-functions)
endif()
# An index out of range stops the program, in what is shipped too.
target_compile_definitions(project_options INTERFACE _GLIBCXX_ASSERTIONS)

if(QOS_FUZZ)
    target_compile_options(project_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(QOS_COVERAGE)
    target_compile_options(project_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
    target_link_options(project_options INTERFACE -fprofile-instr-generate)
    target_sources(project_options INTERFACE "${PROJECT_SOURCE_DIR}/tests/coverage/WriteOnAbort.cpp")
else()
    # No file tells where it was built; only reports of coverage have to find the sources.
    target_compile_options(project_options INTERFACE
        "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/="
        "-ffile-prefix-map=${PROJECT_BINARY_DIR}=.")
endif()
