# The page of --format html: one constant of the tool, with the style and the script in it and what
# lets a browser take these two and nothing else (CSP Level 3, 2.3.1: hash-source).

# The SHA-256 of a text, in base64.
function(sha256_base64 text result)
    set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
    string(SHA256 digits "${text}")
    # 32 octets are ten groups of three, and two octets more that make three characters.
    string(APPEND digits "00")
    set(encoded "")
    foreach(place RANGE 0 60 6)
        string(SUBSTRING "${digits}" ${place} 6 group)
        foreach(shift 18 12 6 0)
            math(EXPR digit "(0x${group} >> ${shift}) & 63")
            string(SUBSTRING "${alphabet}" ${digit} 1 digit)
            string(APPEND encoded "${digit}")
        endforeach()
    endforeach()
    string(SUBSTRING "${encoded}" 0 43 encoded)
    set(${result} "${encoded}=" PARENT_SCOPE)
endfunction()

foreach(part html css js)
    set(file ${CMAKE_CURRENT_LIST_DIR}/page.${part})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(READ ${file} page_${part})
endforeach()
sha256_base64("${page_css}" style_hash)
sha256_base64("${page_js}" script_hash)
string(CONFIGURE "${page_html}" page @ONLY)
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/page.inc CONTENT "R\"page(${page})page\"\n"
    @ONLY NEWLINE_STYLE UNIX)
