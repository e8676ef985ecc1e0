# What an installation consists of.

install(TARGETS vantel EXPORT vantel LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES
    ${PROJECT_BINARY_DIR}/include/vantel.h
    ${PROJECT_BINARY_DIR}/include/vantel_exceptions.hpp
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
