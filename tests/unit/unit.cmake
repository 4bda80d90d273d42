corvane_test(NAME unit_tests
    SOURCES
        ${corvane_unit_sources}
        ${CMAKE_SOURCE_DIR}/platform/windows/AddressContexts.cpp
        unit/WholePlatformTest.cpp
    LIBS corvane_fakes
    GROUPED)
add_dependencies(unit_tests vendor_list)

# What is written in terms of POSIX files, rights and processes; on disks of the tests' own in a sandbox.
corvane_test(NAME files_test
    SOURCES
        unit/FileLockTest.cpp
        unit/FilesTest.cpp
        unit/PresetsRightsTest.cpp
        unit/VendorListRightsTest.cpp
    LIBS corvane_core)
corvane_test(NAME disk_test NETNS
    SOURCES
        unit/FullDiskTest.cpp
        unit/PresetsDiskTest.cpp
        unit/ReportExportTest.cpp
    LIBS corvane_fakes)

# The files that the tests compare with are those of a writer that shares no code with the program.
add_test(NAME presets_oracle_test
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/unit/presets_oracle.py check
        ${CMAKE_CURRENT_SOURCE_DIR}/data/presets)
add_test(NAME make_vendor_list_test
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/unit/make_vendor_list_test.py
        ${CMAKE_SOURCE_DIR}/data/make_vendor_list.py ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/VendorNumbers.log
        ${CORVANE_OUI_CSV})
set_tests_properties(presets_oracle_test make_vendor_list_test PROPERTIES LABELS unit)
