corvane_python_tests(NAME structure FILE ${CMAKE_CURRENT_LIST_DIR}/structure_test.py TIMEOUT 900)
