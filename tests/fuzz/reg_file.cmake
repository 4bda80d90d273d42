corvane_test(NAME reg_file_fuzz SOURCES fuzz/RegFileFuzz.cpp LIBS corvane_store)
