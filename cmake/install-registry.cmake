# cmake --install BUILD --component KORRegistry --prefix WHERE: the registry layer's headers and
# static libraries, where find_package(KORRegistry) finds them.
include(CMakePackageConfigHelpers)

set(kor_package_dir lib/cmake/KORRegistry)
install(TARGETS base registry EXPORT KORRegistryTargets
    ARCHIVE DESTINATION lib COMPONENT KORRegistry)
install(EXPORT KORRegistryTargets NAMESPACE KORRegistry::
    DESTINATION ${kor_package_dir} COMPONENT KORRegistry)
install(FILES base/CKORString.h base/CTable1D.h base/ReportFatalError.h
    DESTINATION include/KORRegistry/base COMPONENT KORRegistry)
install(FILES registry/CRegistryKey.h registry/KeyHandles.h registry/RegValueType.h
        registry/StringUtilities.h registry/SymbolicRoots.h
    DESTINATION include/KORRegistry/registry COMPONENT KORRegistry)
foreach(target base registry)
    target_include_directories(${target} PUBLIC $<INSTALL_INTERFACE:include/KORRegistry>)
    target_compile_features(${target} INTERFACE cxx_std_17)
endforeach()
# The archives of the release build call the stack protector's library, which only this option links.
target_link_options(base INTERFACE $<INSTALL_INTERFACE:-fstack-protector-strong>)

configure_package_config_file(cmake/KORRegistryConfig.cmake.in
    ${CMAKE_BINARY_DIR}/KORRegistryConfig.cmake INSTALL_DESTINATION ${kor_package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KORRegistryConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KORRegistryConfig.cmake
        ${CMAKE_BINARY_DIR}/KORRegistryConfigVersion.cmake
    DESTINATION ${kor_package_dir} COMPONENT KORRegistry)
