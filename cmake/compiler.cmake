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
  # What the linker does by itself today, said so that another one does it, too: a place that nobody can guess, in all
  # of 64 bits, and data that never runs. What it doesn't do: no Windows folder of its own on a server of desktops.
  target_link_options(zq_options INTERFACE
    -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat -Wl,--tsaware)
endif()

# The program counts what it has, and tells who asks: for the soak, and for whoever looks for a leak.
if(WIN32 AND CMAKE_BUILD_TYPE STREQUAL "Debug")
  set(counters ON)
else()
  set(counters OFF)
endif()
option(ZQ_COUNTERS "Count the handles, GDI and COM objects, windows and memory that the program has" ${counters})
if(ZQ_COUNTERS)
  target_compile_definitions(zq_options INTERFACE ZQ_COUNTERS)
endif()

# -O3 makes nothing here faster, the devices being what is waited for, and all of it larger.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
# zq_ships(TARGET): a program of ours. A release's leaves out what nobody asks for; its symbols go to TARGET.debug
# beside it, and it knows them there.
function(zq_ships target)
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
    return()
  endif()
  target_link_options(${target} PRIVATE -Wl,--gc-sections)
  # These tools would write the time of their running into a program that has none.
  set(at_no_time ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${at_no_time} ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE_NAME:${target}> ${target}.debug
    COMMAND ${at_no_time} ${CMAKE_STRIP} --strip-all $<TARGET_FILE_NAME:${target}>
    COMMAND ${at_no_time} ${CMAKE_OBJCOPY} --add-gnu-debuglink=${target}.debug $<TARGET_FILE_NAME:${target}>
    BYPRODUCTS ${target}.debug
    WORKING_DIRECTORY $<TARGET_FILE_DIR:${target}>
    VERBATIM)
endfunction()

# zq_for_size(TARGET): code that waits for the user or for a command line is built as small as it gets.
function(zq_for_size target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-Os>)
endfunction()

# zq_precompile(TARGET): what nearly every file includes, compiled once where clang builds for the tests. Each file
# includes what it uses all the same, as the builds for Windows show, which have none of this: with it, GCC optimises
# otherwise.
function(zq_precompile target)
  if(ZQ_TESTS AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_precompile_headers(${target} PRIVATE
      <algorithm> <cstddef> <cstdint> <functional> <memory> <optional> <string> <string_view> <utility> <vector>)
  endif()
endfunction()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
  # Each table and function in a section of its own, so that a program leaves out those that nobody asks for (zq_ships).
  # In programs for Windows the linker keeps the functions of each object all the same: every one stands in the table of
  # unwinding.
  target_compile_options(zq_options INTERFACE -ffunction-sections -fdata-sections)
  # A fault of ours ends the process before anybody can make use of it: guarded stacks, checked bounds.
  target_compile_options(zq_options INTERFACE -fstack-protector-strong)
  target_link_options(zq_options INTERFACE -fstack-protector-strong)
  target_compile_definitions(zq_options INTERFACE _GLIBCXX_ASSERTIONS _FORTIFY_SOURCE=2)
  if(NOT WIN32)
    target_link_options(zq_options INTERFACE -Wl,-z,relro,-z,now)
  endif()
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
