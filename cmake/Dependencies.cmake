find_package(jsoncpp CONFIG REQUIRED)
find_package(tinyxml2 CONFIG REQUIRED)
if(VELM_BUILD_TESTS)
  find_package(GTest CONFIG REQUIRED)
endif()
if(VELM_BUILD_BENCHMARKS)
  find_package(benchmark CONFIG REQUIRED)
endif()

# The system libraries that the sources call.
add_library(velm_system_libraries INTERFACE)
target_link_libraries(velm_system_libraries INTERFACE
  advapi32 crypt32 ole32 oleaut32 psapi shell32 user32 uuid version winmm wintrust wtsapi32)
