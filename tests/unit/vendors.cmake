corvane_test(NAME vendors_test
    SOURCES
        unit/RandomMacTest.cpp
        unit/VendorListRightsTest.cpp
        unit/VendorListTest.cpp
    LIBS corvane_core)
add_dependencies(vendors_test vendor_list)

add_test(NAME make_vendor_list_test
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/unit/make_vendor_list_test.py
        ${CMAKE_SOURCE_DIR}/data/make_vendor_list.py ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/VendorNumbers.log
        ${CORVANE_OUI_CSV})
set_tests_properties(make_vendor_list_test PROPERTIES LABELS unit)
