# The images of resources/images/, drawn at the usual sizes, as one more resource of the program.
# Not compressed: they would be unpacked at each start.
file(GLOB TAV_IMAGES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/resources/images/*.svg)
set(TAV_DRAWN ${CMAKE_BINARY_DIR}/drawn)
file(MAKE_DIRECTORY ${TAV_DRAWN})

add_executable(draw_images resources/draw_images.cpp)
target_compile_definitions(draw_images PRIVATE QT_NO_KEYWORDS)
target_link_libraries(draw_images PRIVATE Qt6::Svg tav_compiler)

add_custom_command(OUTPUT ${TAV_DRAWN}/qrc_drawn.cpp
    COMMAND draw_images ${TAV_DRAWN} ${TAV_IMAGES}
    COMMAND Qt6::rcc --no-compress --name drawn -o ${TAV_DRAWN}/qrc_drawn.cpp ${TAV_DRAWN}/drawn.qrc
    DEPENDS draw_images ${TAV_IMAGES}
    COMMENT "Drawing the images")
