# What a device gets, and what somebody needs who builds a plug-in against it.
include(CMakePackageConfigHelpers)

install(TARGETS qos-agent DESTINATION bin)
install(TARGETS QosOpenConfig DESTINATION lib/qos-agent)
install(FILES etc/QosOpenConfig.json DESTINATION etc/qos-agent)
install(TARGETS platform EXPORT QosPlatformTargets
    LIBRARY DESTINATION lib
    FILE_SET HEADERS DESTINATION include/qos-agent)

set(package_dir lib/cmake/QosPlatform)
install(EXPORT QosPlatformTargets NAMESPACE QosPlatform:: DESTINATION ${package_dir})
configure_package_config_file(cmake/QosPlatformConfig.cmake.in QosPlatformConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(QosPlatformConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/QosPlatformConfig.cmake"
    "${PROJECT_BINARY_DIR}/QosPlatformConfigVersion.cmake"
    DESTINATION ${package_dir})
