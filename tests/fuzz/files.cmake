corvane_test(NAME files_fuzz SOURCES fuzz/FilesFuzz.cpp LIBS corvane_core)
