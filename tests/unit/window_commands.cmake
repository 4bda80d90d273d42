corvane_test(NAME window_commands_test
    SOURCES
        unit/CommandGateTest.cpp
        unit/DhcpOperationsTest.cpp
        unit/EnableOrDisableTest.cpp
        unit/MacChangeTest.cpp
        unit/MakerTest.cpp
        unit/OpenPagesTest.cpp
    LIBS corvane_fakes)
corvane_test(NAME report_export_test SOURCES unit/ReportExportTest.cpp LIBS corvane_fakes NETNS)
