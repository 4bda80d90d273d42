# With FROM and TO, each a file: copies FROM to TO unless there is a file already, which the user may have changed.
if(NOT EXISTS "${TO}")
    file(COPY_FILE "${FROM}" "${TO}")
endif()
