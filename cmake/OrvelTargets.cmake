# How every target of the project is compiled, and how a room is made.

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})

find_package(Threads REQUIRED)

add_library(orvel_flags INTERFACE)
target_compile_features(orvel_flags INTERFACE cxx_std_20)
target_compile_options(orvel_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                                             -Wconversion -Wno-sign-conversion)
target_link_libraries(orvel_flags INTERFACE Threads::Threads)
# What an older Boost still has and a newer one has not is used nowhere.
target_compile_definitions(orvel_flags INTERFACE BOOST_ASIO_NO_DEPRECATED)
# The toolkit's "signals" is also a name in GLib's headers.
target_compile_definitions(orvel_flags INTERFACE QT_NO_KEYWORDS)
# In a file that includes several, the names of one are visible in the next. Those that clash do not compile.
target_compile_options(orvel_flags INTERFACE
  $<$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>:-Wno-shadow>
  $<$<AND:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>)
if(CMAKE_BUILD_TYPE STREQUAL Release AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # False alarms of all its releases so far about the standard library's own strings and optionals, when it optimises.
  target_compile_options(orvel_flags INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(CMAKE_BUILD_TYPE STREQUAL Release)
  # What a program that reads from the network is built with wherever people install it.
  target_compile_options(orvel_flags INTERFACE -fPIE -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
                                               -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
  if(APPLE)
    # Its linker makes all programs like that, and has no such options.
    target_link_options(orvel_flags INTERFACE -Wl,-dead_strip)
  else()
    target_compile_options(orvel_flags INTERFACE -fstack-clash-protection)
    target_link_options(orvel_flags INTERFACE -pie -Wl,-z,relro,-z,now,--as-needed)
  endif()
endif()
if(ORVEL_WARNINGS_AS_ERRORS)
  target_compile_options(orvel_flags INTERFACE -Werror)
endif()
if(ORVEL_SANITIZE)
  target_compile_options(orvel_flags INTERFACE -fsanitize=${ORVEL_SANITIZE} -fno-omit-frame-pointer
                                               -fno-sanitize-recover=all)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # False alarms about optionals and variants, of which the added code hides that they are asked first.
    target_compile_options(orvel_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
  target_link_options(orvel_flags INTERFACE -fsanitize=${ORVEL_SANITIZE})
endif()
if(ORVEL_SANITIZE MATCHES undefined)
  # This check asks the system for a pipe to look at memory, and takes the memory for bad when there is none to have.
  target_compile_options(orvel_flags INTERFACE -fno-sanitize=vptr)
endif()
if(ORVEL_SANITIZE MATCHES thread)
  # The sanitizer knows nothing of fences; without them it judges Asio by its locks alone.
  target_compile_definitions(orvel_flags INTERFACE BOOST_ASIO_DISABLE_FENCED_BLOCK)
endif()

# orvel_room(NAME [FOLDER folder] [ONLY pattern ... | EXCEPT entry ...] SOURCES ... USES room ... LINKS library ...)
#
# Makes the library orvel_NAME from src/FOLDER, which is NAME unless said otherwise: from all of it, or, where several
# rooms share a folder, from its entries that match ONLY, or all EXCEPT those. Its headers are reached as
# "FOLDER/Type.hpp" through a view that holds this room alone, so a target sees a room only when it, or a room that it
# uses, names it in USES.
function(orvel_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "FOLDER" "ONLY;EXCEPT;SOURCES;USES;LINKS")
  if(NOT room_FOLDER)
    set(room_FOLDER ${name})
  endif()
  set(folder ${PROJECT_SOURCE_DIR}/src/${room_FOLDER})
  set(view ${PROJECT_BINARY_DIR}/rooms/${name})
  file(REMOVE_RECURSE ${view})
  if(room_ONLY OR room_EXCEPT)
    file(MAKE_DIRECTORY ${view}/${room_FOLDER})
    set(patterns ${room_ONLY})
    if(room_EXCEPT)
      set(patterns *)
    endif()
    list(TRANSFORM patterns PREPEND ${folder}/)
    file(GLOB entries CONFIGURE_DEPENDS RELATIVE ${folder} ${patterns})
    list(REMOVE_ITEM entries CMakeLists.txt ${room_EXCEPT})
    foreach(entry IN LISTS entries)
      file(CREATE_LINK ${folder}/${entry} ${view}/${room_FOLDER}/${entry} SYMBOLIC)
    endforeach()
  else()
    get_filename_component(parent ${view}/${room_FOLDER} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${folder} ${view}/${room_FOLDER} SYMBOLIC)
  endif()
  list(TRANSFORM room_USES PREPEND orvel_)
  if(room_SOURCES)
    list(TRANSFORM room_SOURCES PREPEND ${folder}/)
    add_library(orvel_${name} STATIC ${room_SOURCES})
    target_include_directories(orvel_${name} PUBLIC ${view})
    target_link_libraries(orvel_${name} PUBLIC ${room_USES} PRIVATE orvel_flags ${room_LINKS})
  else()
    add_library(orvel_${name} INTERFACE)
    target_include_directories(orvel_${name} INTERFACE ${view})
    target_link_libraries(orvel_${name} INTERFACE ${room_USES})
  endif()
endfunction()
