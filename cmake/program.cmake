# What stands in the program's folder: `cmake --install BUILD --component program --prefix FOLDER`.
# The target `program` builds it. What debuggers want beside it is the component `symbols`.
add_custom_target(program)

foreach(target IN ITEMS Zeroquill ZQExMan zqwipe)
  if(TARGET ${target})
    add_dependencies(program ${target})
    install(TARGETS ${target} RUNTIME DESTINATION . COMPONENT program)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
      install(FILES $<TARGET_FILE_DIR:${target}>/${target}.debug DESTINATION . COMPONENT symbols)
    endif()
  endif()
endforeach()

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/resources/help/Zeroquill.chm
  DESTINATION . COMPONENT program)
if(TARGET zqwipe)
  install(FILES ${PROJECT_SOURCE_DIR}/src/cli/CLI11-LICENSE.txt DESTINATION . COMPONENT program)
endif()
