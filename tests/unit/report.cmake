corvane_test(NAME report_test SOURCES unit/TextReportTest.cpp LIBS corvane_fakes)
