# What the programs say, against golden texts (golden/*.txt; scripts/golden writes them anew).
corvane_python_tests(NAME cli FILE ${CMAKE_CURRENT_LIST_DIR}/command_line_test.py NETNS)
corvane_python_tests(NAME cli_report FILE ${CMAKE_CURRENT_LIST_DIR}/report_test.py NETNS)
