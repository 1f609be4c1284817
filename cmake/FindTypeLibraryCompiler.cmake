# Finds what a type library is made with: Wine's widl, its IDL includes and the folder of stdole2.tlb.
#   widl_EXECUTABLE, widl_INCLUDE_DIR, widl_STDOLE_DIR
find_program(widl_EXECUTABLE NAMES widl widl-stable)
find_path(widl_INCLUDE_DIR NAMES oaidl.idl
          PATHS /usr/include /usr/local/include
          PATH_SUFFIXES wine/wine/windows wine/windows wine-development/wine/windows
          NO_CMAKE_FIND_ROOT_PATH)
file(GLOB widl_library_dirs /usr/lib/*/wine/x86_64-windows /usr/lib/wine/x86_64-windows
     /usr/local/lib/wine/x86_64-windows)
find_path(widl_STDOLE_DIR NAMES stdole2.tlb PATHS ${widl_library_dirs} NO_CMAKE_FIND_ROOT_PATH)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(TypeLibraryCompiler
  REQUIRED_VARS widl_EXECUTABLE widl_INCLUDE_DIR widl_STDOLE_DIR)
mark_as_advanced(widl_EXECUTABLE widl_INCLUDE_DIR widl_STDOLE_DIR)
