# What a consumer gets: the DLL and its import library, the headers in the folders that the sources have, and a
# package that find_package(velmsdk) reads. Of sdk/ only the host application's header is public.
include(CMakePackageConfigHelpers)

install(TARGETS velmsdk EXPORT velmsdk RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(FILES sdk/VelmSdk.h DESTINATION include/velmsdk/sdk)
install(DIRECTORY archive common host module telemetry DESTINATION include/velmsdk
        FILES_MATCHING PATTERN "*.h" PATTERN "*.inc" PATTERN "*.inl")
install(DIRECTORY ${CMAKE_BINARY_DIR}/generated/ DESTINATION include/velmsdk FILES_MATCHING PATTERN "*.h")

install(EXPORT velmsdk NAMESPACE velmsdk:: FILE velmsdk-config.cmake DESTINATION lib/cmake/velmsdk)
write_basic_package_version_file(velmsdk-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velmsdk-config-version.cmake DESTINATION lib/cmake/velmsdk)
