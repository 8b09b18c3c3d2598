# How the program becomes an application of macOS. What goes into it besides comes from packaging/macos.

find_program(RSVG_CONVERT rsvg-convert REQUIRED)
find_program(ICONUTIL iconutil REQUIRED)

# orvel_bundle(TARGET): makes Orvel.app of it.
function(orvel_bundle target)
  set(packaging ${PROJECT_SOURCE_DIR}/packaging/macos)
  set(made ${PROJECT_BINARY_DIR}/packaging)

  set(icon ${made}/Orvel.icns)
  add_custom_command(
    OUTPUT ${icon}
    COMMAND ${packaging}/make-iconset ${RSVG_CONVERT} ${packaging}/Orvel.svg ${made}/Orvel.iconset
    COMMAND ${ICONUTIL} --convert icns --output ${icon} ${made}/Orvel.iconset
    DEPENDS ${packaging}/make-iconset ${packaging}/Orvel.svg
    VERBATIM)
  set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  target_sources(${target} PRIVATE ${icon})

  configure_file(${packaging}/Info.plist.in ${made}/Info.plist @ONLY)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME Orvel
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${made}/Info.plist)
endfunction()
