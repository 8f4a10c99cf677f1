# The Designer files that stand beside the pages and forms. Each is compiled into the view's room, and one
# table tells them all by name, with the names of their widgets: the view checks a form's controls against
# it before a page is built.
function(qy_layouts room)
  qy_room_target(target ${room})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    return()
  endif()
  file(GLOB files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*/*.ui ${PROJECT_SOURCE_DIR}/src/platform/*/*.ui)
  list(SORT files)
  set(folder ${CMAKE_BINARY_DIR}/layouts)
  set(headers)
  foreach(file IN LISTS files)
    get_filename_component(name ${file} NAME_WE)
    add_custom_command(OUTPUT ${folder}/ui_${name}.h
      COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
      COMMAND Qt6::uic -o ${folder}/ui_${name}.h ${file}
      DEPENDS ${file} VERBATIM)
    list(APPEND headers ${folder}/ui_${name}.h)
  endforeach()
  add_custom_command(OUTPUT ${folder}/layout_table.cpp
    COMMAND ${CMAKE_COMMAND} "-DFILES=${files}" -DOUTPUT=${folder}/layout_table.cpp
            -P ${PROJECT_SOURCE_DIR}/cmake/layout_table.cmake
    DEPENDS ${files} ${PROJECT_SOURCE_DIR}/cmake/layout_table.cmake VERBATIM)
  target_sources(${target} PRIVATE ${headers} ${folder}/layout_table.cpp)
  set_source_files_properties(${folder}/layout_table.cpp ${headers} PROPERTIES SKIP_AUTOMOC ON)
  target_include_directories(${target} PRIVATE ${folder})
endfunction()
