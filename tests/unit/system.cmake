corvane_test(NAME system_test SOURCES unit/CodePageTest.cpp unit/FilesTest.cpp LIBS corvane_system)
corvane_test(NAME full_disk_test SOURCES unit/FullDiskTest.cpp LIBS corvane_system NETNS)
