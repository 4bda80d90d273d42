# The main window: presets, their editor, and applying them to real links.
corvane_python_tests(NAME gui_presets FILE ${CMAKE_CURRENT_LIST_DIR}/presets_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_presets_apply FILE ${CMAKE_CURRENT_LIST_DIR}/presets_apply_test.py NETNS DESKTOP)
