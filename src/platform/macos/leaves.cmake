# The leaves of macOS.

include(${CMAKE_CURRENT_LIST_DIR}/sources.cmake)
set(sources ${ORVEL_MACOS_SOURCES})
list(TRANSFORM sources PREPEND macos/)

set(frameworks AppKit ApplicationServices CoreFoundation CoreGraphics CoreImage CoreMedia CoreServices CoreVideo Foundation
               IOKit ImageIO ScreenCaptureKit ServiceManagement SystemConfiguration)
list(TRANSFORM frameworks REPLACE "(.+)" "-framework \\1")

orvel_room(platform
  SOURCES ${sources}
  USES base input catalog mirror ui session
  LINKS ICU::uc ${frameworks})

# All in one language, as the system's headers are read differently in the other.
get_target_property(sources orvel_platform SOURCES)
set_source_files_properties(${sources} PROPERTIES LANGUAGE OBJCXX)
target_compile_options(orvel_platform PRIVATE -fobjc-arc)
set_target_properties(orvel_platform PROPERTIES UNITY_BUILD OFF)
