# The brand of the demo product. docs/packaging.md describes the settings.
set(HELPER_COMPANY_NAME "Acme")
set(HELPER_PRODUCT_NAME "Acme Studio")
set(HELPER_IDENTIFIER "com.example.subscription-helper")
set(HELPER_PRODUCT_DOMAIN "com.example.acme-studio")
set(HELPER_STORE_HOST "127.0.0.1:8642") # the demo store service
set(HELPER_STORE_ID "acme")
set(HELPER_UNINSTALLER "Uninstall Acme Studio")
set(HELPER_ICON "../../resources/AppIcon.svg")
