corvane_test(NAME preset_editing_test
    SOURCES
        unit/PresetCommandsTest.cpp
        unit/PresetEditingTest.cpp
        unit/PresetSavingTest.cpp
    LIBS corvane_fakes)
