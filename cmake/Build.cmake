# Compiler settings shared by every target, and the helper that makes one of the project's
# shared libraries with its own export macro.

# The project's own code builds warning-free; third-party code added to the build opts out where
# it is added (tests/CMakeLists.txt).
add_compile_options(-Wall -Wextra -Wshadow -Wconversion -Wsign-conversion -Wfloat-conversion
                    -Wdouble-promotion -Werror)

if(LIBDRIVE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

if(WIN32)
  # One self-contained set of DLLs: the C++ runtime is linked into each module, so the programs
  # run under Wine or on a bare Windows without the MinGW runtime DLLs beside them.
  add_link_options(-static-libgcc -static-libstdc++ -Wl,-Bstatic,--whole-archive -lwinpthread -Wl,--no-whole-archive,-Bdynamic)
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)
endif()

# libdrive_shared_library(<target> <MACRO> <include-dir> sources...)
# Builds a shared library whose symbols are hidden unless marked <MACRO>_API, and generates
# <include-dir>/Export.h defining that macro.
function(libdrive_shared_library target macro incdir)
  add_library(${target} SHARED ${ARGN})
  set(LIB ${macro})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/ExportMacro.h.in
                 ${CMAKE_CURRENT_BINARY_DIR}/generated/${incdir}/Export.h @ONLY)
  target_include_directories(${target} PUBLIC
    ${CMAKE_CURRENT_SOURCE_DIR}/include ${CMAKE_CURRENT_BINARY_DIR}/generated)
  target_compile_definitions(${target} PRIVATE ${macro}_BUILDING)
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON PREFIX "lib")
endfunction()

# libdrive_internal_library(<library> <header-dir> sources...), after <library>'s own links.
# The pieces of <library> that its tests check directly (plain functions over recorded answers,
# arithmetic rules) as a static library <library>_internal, which <library> links privately and
# the tests link instead of compiling the library's sources into themselves. Its headers, in
# <header-dir>, are not published: only tests reach them. Symbols stay hidden in the library.
function(libdrive_internal_library library headerdir)
  add_library(${library}_internal STATIC ${ARGN})
  target_include_directories(${library}_internal PUBLIC ${headerdir})
  get_target_property(published ${library} INCLUDE_DIRECTORIES)
  target_include_directories(${library}_internal PUBLIC ${published})
  get_target_property(dependencies ${library} INTERFACE_LINK_LIBRARIES)
  if(dependencies)
    target_link_libraries(${library}_internal PUBLIC ${dependencies})
  endif()
  set_target_properties(${library}_internal PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(${library} PRIVATE ${library}_internal)
endfunction()
