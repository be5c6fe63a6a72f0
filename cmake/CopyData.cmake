# Copies the data folder beside the executables; a missing folder copies nothing.
if(EXISTS "${SRC}")
    file(COPY "${SRC}/" DESTINATION "${DST}")
endif()
