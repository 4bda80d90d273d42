corvane_test(NAME command_line_fuzz SOURCES fuzz/CommandLineFuzz.cpp LIBS corvane_fakes)
