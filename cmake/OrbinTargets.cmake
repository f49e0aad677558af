# One precompiled header per layer: Qt headers dominate compile time, and a
# library target compiles many translation units against the same set.
set(ORBIN_PCH_CORE ${CMAKE_SOURCE_DIR}/cmake/pch_core.h)
set(ORBIN_PCH_WIDGETS ${CMAKE_SOURCE_DIR}/cmake/pch_widgets.h)

# orbin_add_library(<name> LAYER core|gui|widgets SOURCES ... [LIBS ...] [SHARED])
# Declares a library of one area with the precompiled headers of its layer.
function(orbin_add_library name)
  cmake_parse_arguments(L "SHARED" "LAYER" "SOURCES;LIBS;PUBLIC_INCLUDE" ${ARGN})
  if(L_SHARED)
    add_library(${name} SHARED ${L_SOURCES})
  else()
    add_library(${name} STATIC ${L_SOURCES})
  endif()
  if(L_LAYER STREQUAL "core")
    target_link_libraries(${name} PUBLIC Qt5::Core)
    target_precompile_headers(${name} PRIVATE ${ORBIN_PCH_CORE})
  elseif(L_LAYER STREQUAL "gui")
    target_link_libraries(${name} PUBLIC Qt5::Core Qt5::Gui)
    target_precompile_headers(${name} PRIVATE ${ORBIN_PCH_CORE})
  else()
    target_link_libraries(${name} PUBLIC Qt5::Core Qt5::Gui Qt5::Widgets)
    target_precompile_headers(${name} PRIVATE ${ORBIN_PCH_WIDGETS})
  endif()
  if(L_LIBS)
    target_link_libraries(${name} PUBLIC ${L_LIBS})
  endif()
  if(L_PUBLIC_INCLUDE)
    target_include_directories(${name} PUBLIC ${L_PUBLIC_INCLUDE})
  else()
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
endfunction()

# orbin_add_plugin(<name> SOURCES ... [LIBS ...] [OUTPUT_DIRECTORY dir])
# A Quill plugin: a Qt plugin module linked against the host's library, put in
# the host's plugin folder (or OUTPUT_DIRECTORY). It exports the two entry
# points Qt looks for and nothing else, so the project's static libraries
# linked into it never clash with the host's or another plugin's copies.
set(ORBIN_PLUGIN_EXPORTS ${CMAKE_SOURCE_DIR}/cmake/plugin_exports.map)
function(orbin_add_plugin name)
  cmake_parse_arguments(P "" "OUTPUT_DIRECTORY" "SOURCES;LIBS" ${ARGN})
  if(NOT P_OUTPUT_DIRECTORY)
    set(P_OUTPUT_DIRECTORY ${ORBIN_PLUGIN_DIR})
  endif()
  add_library(${name} MODULE ${P_SOURCES})
  # No precompiled header: a plugin module is a thin skin of a file or two
  # over libraries that have theirs.
  target_link_libraries(${name} PRIVATE quill_host_api Qt5::Core Qt5::Gui Qt5::Widgets ${P_LIBS})
  set_target_properties(${name} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${P_OUTPUT_DIRECTORY}
    LINK_DEPENDS ${ORBIN_PLUGIN_EXPORTS})
  target_link_options(${name} PRIVATE "LINKER:--version-script=${ORBIN_PLUGIN_EXPORTS}")
  if(NOT ORBIN_SANITIZE)
    # A missing symbol is found when linking, not when a user loads the plugin.
    target_link_options(${name} PRIVATE "LINKER:--no-undefined")
  endif()
endfunction()
