# Find Qwt 6 for Qt 5: the imported target Qwt::Qwt.

find_path(Qwt_INCLUDE_DIR qwt_plot.h PATH_SUFFIXES qwt qwt-qt5 qwt6 qt5/qwt)
find_library(Qwt_LIBRARY NAMES qwt-qt5 qwt6-qt5 qwt)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Qwt REQUIRED_VARS Qwt_LIBRARY Qwt_INCLUDE_DIR)

if(Qwt_FOUND AND NOT TARGET Qwt::Qwt)
    find_package(Qt5 REQUIRED COMPONENTS Widgets)
    add_library(Qwt::Qwt UNKNOWN IMPORTED)
    set_target_properties(Qwt::Qwt PROPERTIES
        IMPORTED_LOCATION ${Qwt_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${Qwt_INCLUDE_DIR}
        INTERFACE_LINK_LIBRARIES Qt5::Widgets)
endif()
