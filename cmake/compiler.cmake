# Compiler and linker settings that all our targets share: link `zq_options`.
add_library(zq_options INTERFACE)
target_include_directories(zq_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(zq_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror
  # Optimising, GCC 12 takes a literal put before a string for an overlapping copy (its bug 105651).
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  # No path of the machine that builds may enter the program: two checkouts in different folders
  # have to give the same bytes.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)

if(WIN32)
  enable_language(RC)
  target_compile_definitions(zq_options INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX STRICT
    WINVER=0x0A00 _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000007)
  # The time of linking would make two builds of one commit differ.
  target_link_options(zq_options INTERFACE -static -Wl,--no-insert-timestamp)
endif()

if(ZQ_SANITIZE)
  # For all targets, GoogleTest included: the sanitizers' view has to be whole.
  # Lines are all that their reports need to know, and the whole of it would be a quarter of the build.
  add_compile_options(-g1 -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(ZQ_FUZZ)
  add_compile_options(-g1 -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()
