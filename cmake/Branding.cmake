# What a company sets to make the helper its own, in a brand file; docs/packaging.md says what each
# setting is. Every value is compiled or bundled in; none can be changed at run time.
set(HELPER_BRAND "${PROJECT_SOURCE_DIR}/demo/product/brand.cmake" CACHE FILEPATH
    "The brand file: a set() line for each setting")

# helper_setting(NAME PATTERN WHAT): the brand must set NAME to something that matches.
function(helper_setting name pattern what)
    if(NOT DEFINED ${name})
        message(FATAL_ERROR "${HELPER_BRAND}: ${name} is missing; it must be ${what}")
    elseif(NOT "${${name}}" MATCHES "^(${pattern})$")
        message(FATAL_ERROR "${HELPER_BRAND}: ${name} must be ${what}, not '${${name}}'")
    endif()
endfunction()

# helper_file_setting(NAME WHAT): makes the path of NAME absolute; it must be there.
function(helper_file_setting name what)
    get_filename_component(path "${${name}}" ABSOLUTE BASE_DIR "${brand_directory}")
    if(NOT EXISTS "${path}")
        message(FATAL_ERROR "${HELPER_BRAND}: ${name} must be ${what}; there is no '${path}'")
    endif()
    set(${name} "${path}" PARENT_SCOPE)
endfunction()

foreach(name COMPANY_NAME PRODUCT_NAME IDENTIFIER PRODUCT_DOMAIN STORE_HOST STORE_ID UNINSTALLER ICON)
    unset(HELPER_${name})
    unset(HELPER_${name} CACHE)
endforeach()
if(NOT EXISTS "${HELPER_BRAND}" OR IS_DIRECTORY "${HELPER_BRAND}")
    message(FATAL_ERROR "HELPER_BRAND names no brand file: '${HELPER_BRAND}'; see docs/packaging.md")
endif()
include("${HELPER_BRAND}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${HELPER_BRAND}")
get_filename_component(brand_directory "${HELPER_BRAND}" ABSOLUTE)
get_filename_component(brand_directory "${brand_directory}" DIRECTORY)

set(name "[^\n\r]*[^ \n\r][^\n\r]*")
set(domain "[A-Za-z0-9][A-Za-z0-9-]*(\\.[A-Za-z0-9-]+)+")
helper_setting(HELPER_COMPANY_NAME "${name}" "the company's name")
helper_setting(HELPER_PRODUCT_NAME "${name}" "the product's display name")
helper_setting(HELPER_IDENTIFIER "${domain}" "a reverse domain name")
helper_setting(HELPER_PRODUCT_DOMAIN "${domain}" "a reverse domain name")
helper_setting(HELPER_STORE_HOST "[A-Za-z0-9._-]+(:[0-9]+)?" "a host or host:port")
helper_setting(HELPER_STORE_ID "${name}" "the store's identifier at the store service")
helper_setting(HELPER_UNINSTALLER "|${name}" "a program, a script or an application bundle, or empty")
helper_setting(HELPER_ICON "${name}\\.svg" "an SVG file")
helper_file_setting(HELPER_ICON "an SVG file")
if(HELPER_UNINSTALLER)
    helper_file_setting(HELPER_UNINSTALLER "a program, a script or an application bundle, or empty")
endif()
if(HELPER_PRODUCT_DOMAIN STREQUAL HELPER_IDENTIFIER)
    message(FATAL_ERROR "${HELPER_BRAND}: HELPER_PRODUCT_DOMAIN and HELPER_IDENTIFIER must differ")
endif()

# What stands in XML, and in quotes in C++ and in strings tables.
foreach(name COMPANY_NAME PRODUCT_NAME)
    string(REPLACE "&" "&amp;" HELPER_${name}_XML "${HELPER_${name}}")
    string(REPLACE "<" "&lt;" HELPER_${name}_XML "${HELPER_${name}_XML}")
    string(REPLACE ">" "&gt;" HELPER_${name}_XML "${HELPER_${name}_XML}")
endforeach()
get_filename_component(HELPER_UNINSTALLER_NAME "${HELPER_UNINSTALLER}" NAME)
foreach(name PRODUCT_NAME STORE_ID UNINSTALLER_NAME)
    string(REGEX REPLACE "([\\\\\"])" "\\\\\\1" HELPER_${name}_ESCAPED "${HELPER_${name}}")
endforeach()

# The bundle, assembled in the build folder.
set(HELPER_BUNDLE "${PROJECT_BINARY_DIR}/Subscription Helper.app")
