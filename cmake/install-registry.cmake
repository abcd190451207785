# cmake --install BUILD --component KORRegistry --prefix WHERE: the registry layer's headers and
# static libraries, where find_package(KORRegistry) finds them.
include(CMakePackageConfigHelpers)

# In the tree of another build, KORRegistry::registry is the same.
set(kor_package_dir lib/cmake/KORRegistry)
set(headers_base CKORString.h CTable1D.h ReportFatalError.h)
set(headers_registry CRegistryKey.h KeyHandles.h RegValueType.h StringUtilities.h SymbolicRoots.h)
foreach(name base registry)
    list(TRANSFORM headers_${name} PREPEND ${PROJECT_SOURCE_DIR}/${name}/)
    target_sources(kor_${name} PUBLIC FILE_SET HEADERS
        BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers_${name}})
    set_target_properties(kor_${name} PROPERTIES EXPORT_NAME ${name})
    target_compile_features(kor_${name} INTERFACE cxx_std_17)
    add_library(KORRegistry::${name} ALIAS kor_${name})
endforeach()
install(TARGETS kor_base kor_registry EXPORT KORRegistryTargets
    ARCHIVE DESTINATION lib COMPONENT KORRegistry
    FILE_SET HEADERS DESTINATION include/KORRegistry COMPONENT KORRegistry)
install(EXPORT KORRegistryTargets NAMESPACE KORRegistry::
    DESTINATION ${kor_package_dir} COMPONENT KORRegistry)
# The archives of the release build call the stack protector's library, which only this option links.
target_link_options(kor_base INTERFACE $<INSTALL_INTERFACE:-fstack-protector-strong>)

configure_package_config_file(cmake/KORRegistryConfig.cmake.in
    ${PROJECT_BINARY_DIR}/KORRegistryConfig.cmake INSTALL_DESTINATION ${kor_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KORRegistryConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KORRegistryConfig.cmake
        ${PROJECT_BINARY_DIR}/KORRegistryConfigVersion.cmake
    DESTINATION ${kor_package_dir} COMPONENT KORRegistry)
