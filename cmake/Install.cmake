# Installs Velmora where desktops look for applications: the binary, its desktop entry, the icon in the
# hicolor theme (PNG at the usual sizes and a scalable SVG) and bash completion, under the prefix given
# to `cmake --install build --prefix PREFIX` (~/.local needs no root).
include(GNUInstallDirs)

find_package(Qt6 REQUIRED COMPONENTS Svg)
add_subdirectory(tools/render-icon)

set(VELMORA_ICON_SVG ${PROJECT_SOURCE_DIR}/data/icons/velmora.svg)
set(VELMORA_ICON_SIZES 16 22 24 32 48 64 128 256)
set(VELMORA_ICON_THEME_DIR ${CMAKE_BINARY_DIR}/icons/hicolor)
set(VELMORA_ICON_PNGS "")
foreach(size IN LISTS VELMORA_ICON_SIZES)
  list(APPEND VELMORA_ICON_PNGS ${VELMORA_ICON_THEME_DIR}/${size}x${size}/apps/velmora.png)
endforeach()
add_custom_command(OUTPUT ${VELMORA_ICON_PNGS}
  COMMAND render-icon ${VELMORA_ICON_SVG} ${VELMORA_ICON_THEME_DIR} velmora ${VELMORA_ICON_SIZES}
  DEPENDS render-icon ${VELMORA_ICON_SVG}
  COMMENT "Rendering the icon for the hicolor theme")
add_custom_target(velmora_icons DEPENDS ${VELMORA_ICON_PNGS})
# Built with the program, so that an install after building only the program finds every file.
add_dependencies(velmora velmora_icons)

install(TARGETS velmora RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/data/velmora.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
foreach(size IN LISTS VELMORA_ICON_SIZES)
  install(FILES ${VELMORA_ICON_THEME_DIR}/${size}x${size}/apps/velmora.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES ${VELMORA_ICON_SVG} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${PROJECT_SOURCE_DIR}/data/completion/velmora.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME velmora)
