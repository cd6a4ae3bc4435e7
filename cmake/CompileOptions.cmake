# How the code of this tree is compiled; third-party code is not.
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -fvect-cost-model=dynamic -DNDEBUG") # loops over text gain by it

add_library(velm_compile_options INTERFACE)
target_compile_options(velm_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wcast-qual -Wformat=2 -Wundef -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi -Wsuggest-override>
  # GCC 12 reports this one falsely on standard string concatenation.
  -Wno-restrict
  # Many wrappers accept a null `this`; without this the compiler deletes their tests.
  -fno-delete-null-pointer-checks
  $<$<CONFIG:Debug>:-O1>)
target_compile_definitions(velm_compile_options INTERFACE
  WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00
  $<$<BOOL:${VELM_INVARIANT_CHECKS}>:VELM_INVARIANT_CHECKS>
  $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
