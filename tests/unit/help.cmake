# In a network namespace of its own: the browser would look for news of its maker.
corvane_python_tests(NAME help_page_test FILE unit/help_page_test.py NETNS)
