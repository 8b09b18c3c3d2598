// Nothing but the headers that all tests share, which CMake puts before it.
