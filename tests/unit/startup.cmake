corvane_test(NAME startup_test
    SOURCES
        unit/ActionOutcomesTest.cpp
        unit/ActionsTest.cpp
        unit/AdviceTest.cpp
        unit/CommandLineTest.cpp
        unit/ConsoleSeatTest.cpp
        unit/FaultReportTest.cpp
        unit/StartupTest.cpp
        unit/VersionTest.cpp
    LIBS corvane_fakes)
