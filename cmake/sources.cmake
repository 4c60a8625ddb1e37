# Which file belongs to which target. A new file is found by itself; only files that know no Qt in a
# folder that otherwise does are named here.
set(_glob CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR})

file(GLOB TAV_CORE_SOURCES ${_glob}
    model/*.cpp
    app/config.cpp app/cl.cpp app/init_boxes.cpp app/options.cpp app/start.cpp
    fileops/fop*.cpp fileops/alloc.cpp
    commands/as*.cpp commands/misc*.cpp commands/pipe.cpp commands/quote*.cpp
    commands/transf*.cpp commands/uri*.cpp commands/clip_x11.cpp
    commands/dtm_scan.cpp commands/ca_scan.cpp
    views/history.cpp views/tree_hotlist.cpp views/tree_file.cpp views/tree_merge.cpp
    views/tree_jobs.cpp views/prop_apply.cpp views/prop_gather.cpp app/ac.cpp app/kb*.cpp platform/ini.cpp
    platform/replace_file.cpp platform/child.cpp platform/namesake.cpp platform/stop_watch.cpp platform/worker.cpp platform/pool.cpp)
list(FILTER TAV_CORE_SOURCES EXCLUDE REGEX "_(dlg|ui)[.]cpp$")

file(GLOB TAV_UI_SOURCES ${_glob} platform/*.cpp views/*.cpp fileops/*.cpp commands/*.cpp app/*.cpp)
list(REMOVE_ITEM TAV_UI_SOURCES ${TAV_CORE_SOURCES} app/main.cpp)
file(GLOB TAV_UI_HEADERS ${_glob} platform/*.h views/*.h fileops/*.h commands/*.h app/*.h)
file(GLOB TAV_FORMS ${_glob} resources/*.ui)
file(GLOB TAV_RESOURCES ${_glob} resources/*.qrc)

# A target needs a source even before its first one is written.
foreach(list TAV_CORE_SOURCES TAV_UI_SOURCES)
    if(NOT ${list})
        file(WRITE ${CMAKE_BINARY_DIR}/${list}.cpp "namespace tav {}\n")
        set(${list} ${CMAKE_BINARY_DIR}/${list}.cpp)
    endif()
endforeach()
