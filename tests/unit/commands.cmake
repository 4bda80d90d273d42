corvane_test(NAME commands_test
    SOURCES unit/CommandsTest.cpp
    LIBS corvane_fakes)
