# Reads cmake/layers.txt: BF_LAYERS lists the folders, lowest first;
# BF_LAYER_USES_<folder> and BF_LAYER_QT_<folder> hold the other two columns.
file(STRINGS ${CMAKE_SOURCE_DIR}/cmake/layers.txt bf_layer_lines REGEX "^[a-z]")
set(BF_LAYERS "")
foreach(line ${bf_layer_lines})
    string(REPLACE ":" ";" columns "${line}")
    list(GET columns 0 folder)
    list(GET columns 1 uses)
    list(GET columns 2 qt)
    string(STRIP "${folder}" folder)
    string(REGEX REPLACE "#.*" "" qt "${qt}")
    separate_arguments(uses UNIX_COMMAND "${uses}")
    separate_arguments(qt UNIX_COMMAND "${qt}")
    list(APPEND BF_LAYERS ${folder})
    set(BF_LAYER_USES_${folder} ${uses})
    set(BF_LAYER_QT_${folder} ${qt})
endforeach()

# The library of a layer folder.
function(bf_layer_target folder out)
    string(REPLACE "/" "_" name "${folder}")
    set(${out} bf_${name} PARENT_SCOPE)
endfunction()

# Links `target` to what the table lets layer `folder` use.
function(bf_layer_links folder target)
    foreach(used ${BF_LAYER_USES_${folder}})
        bf_layer_target(${used} lib)
        target_link_libraries(${target} PUBLIC ${lib})
    endforeach()
    foreach(module ${BF_LAYER_QT_${folder}})
        target_link_libraries(${target} PUBLIC Qt6::${module})
    endforeach()
endfunction()
