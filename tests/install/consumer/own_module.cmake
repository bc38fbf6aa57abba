# Modules of one's own, in two calls for one target; the second imports from the library's.
asn1gen_modules(own_module
    NAMESPACE measurement
    INCLUDE_PREFIX measurement
    OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/generated
    MODULES ${CMAKE_CURRENT_LIST_DIR}/measurement.asn1)
asn1gen_modules(own_module
    NAMESPACE device
    INCLUDE_PREFIX device
    OUTPUT_DIRECTORY generated_device
    CATALOGUE
    MODULES ${CMAKE_CURRENT_LIST_DIR}/device.v1.asn1)
target_include_directories(own_module PRIVATE
    ${CMAKE_CURRENT_BINARY_DIR}/generated/include
    ${CMAKE_CURRENT_BINARY_DIR}/generated_device/include)
