# vyr_install_notices(<folder> [<argument of install>...]): licences of what is shipped, the list of it, and how to report
# what is unsafe.
function(vyr_install_notices folder)
    install(
        FILES
            "${PROJECT_SOURCE_DIR}/docs/third-party.md" "${PROJECT_SOURCE_DIR}/docs/sbom.spdx.json"
            "${PROJECT_SOURCE_DIR}/SECURITY.md"
        DESTINATION "${folder}" ${ARGN}
    )
    get_target_property(library MaterialXCore LOCATION)
    cmake_path(GET library PARENT_PATH materialx_folder)
    foreach(part IN ITEMS MaterialX OpenImageIO yyjson)
        if(IS_DIRECTORY "${materialx_folder}/../share/${part}")
            install(
                DIRECTORY "${materialx_folder}/../share/${part}/"
                DESTINATION "${folder}/licenses/${part}"
                ${ARGN}
                PATTERN "CHANGELOG*" EXCLUDE
                PATTERN "README*" EXCLUDE
            )
        endif()
    endforeach()
    foreach(part IN ITEMS libdeflate0 libutf8proc2 libcli11-dev libxxhash-dev zlib1g)
        if(EXISTS "/usr/share/doc/${part}/copyright")
            install(FILES "/usr/share/doc/${part}/copyright" DESTINATION "${folder}/licenses/${part}" ${ARGN})
        endif()
    endforeach()
endfunction()
