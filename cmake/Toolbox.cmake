# What speeds up a build when it is there, and is never required.
find_program(QOS_CCACHE ccache)
if(QOS_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${QOS_CCACHE}")
endif()
