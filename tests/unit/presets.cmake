corvane_test(NAME presets_test
    SOURCES
        unit/PresetsFileTest.cpp
        unit/PresetsRightsTest.cpp
        unit/SavePresetsTest.cpp
    LIBS corvane_core)
corvane_test(NAME presets_disk_test SOURCES unit/PresetsDiskTest.cpp LIBS corvane_core NETNS)

# The files that the tests compare with are those of a writer that shares no code with the program.
add_test(NAME presets_oracle_test
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/unit/presets_oracle.py check
        ${CMAKE_CURRENT_SOURCE_DIR}/data/presets)
set_tests_properties(presets_oracle_test PROPERTIES LABELS unit)
