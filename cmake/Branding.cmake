# What a company sets to make the helper its own. Every value is compiled or bundled in; none can
# be changed at run time.
set(HELPER_PRODUCT_NAME "Acme Studio" CACHE STRING "The product's display name")
set(HELPER_IDENTIFIER "com.example.subscription-helper" CACHE STRING
    "The helper's own identifier: bundle identifier and user defaults domain")
set(HELPER_PRODUCT_DOMAIN "com.example.acme-studio" CACHE STRING
    "The user defaults domain in which the product keeps subscriptionReference")
set(HELPER_STORE_HOST "127.0.0.1:8642" CACHE STRING "The store service: host or host:port")
set(HELPER_CONFIGURATION "${PROJECT_SOURCE_DIR}/resources/Configuration.strings" CACHE FILEPATH
    "The Configuration.strings to bundle")
set(HELPER_UNINSTALLER "${PROJECT_SOURCE_DIR}/demo/product/Uninstall Acme Studio" CACHE FILEPATH
    "The product's uninstaller to bundle: a program, a script or an application bundle; may be empty")

# For a text in quotes.
string(REGEX REPLACE "([\\\\\"])" "\\\\\\1" HELPER_PRODUCT_NAME_ESCAPED "${HELPER_PRODUCT_NAME}")

# The bundle, assembled in the build folder.
set(HELPER_BUNDLE "${PROJECT_BINARY_DIR}/Subscription Helper.app")

foreach(setting HELPER_IDENTIFIER HELPER_PRODUCT_DOMAIN)
    if(NOT ${setting} MATCHES "^[A-Za-z0-9][A-Za-z0-9._-]*$")
        message(FATAL_ERROR "${setting} must be a reverse domain name, not '${${setting}}'")
    endif()
endforeach()
if(NOT HELPER_STORE_HOST MATCHES "^[A-Za-z0-9._-]+(:[0-9]+)?$")
    message(FATAL_ERROR "HELPER_STORE_HOST must be host or host:port, not '${HELPER_STORE_HOST}'")
endif()
if(NOT EXISTS "${HELPER_CONFIGURATION}")
    message(FATAL_ERROR "HELPER_CONFIGURATION names no file: '${HELPER_CONFIGURATION}'")
endif()
if(HELPER_UNINSTALLER AND NOT EXISTS "${HELPER_UNINSTALLER}")
    message(FATAL_ERROR "HELPER_UNINSTALLER names no file: '${HELPER_UNINSTALLER}'")
endif()
