corvane_test(NAME apply_preset_test SOURCES unit/ApplyPresetTest.cpp LIBS corvane_fakes)
