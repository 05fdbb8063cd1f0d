# The installed package: headers below include/libKRbase, the library, a CMake package and a
# pkg-config file. On Windows the compiler's runtime DLLs go beside the library.
include(CMakePackageConfigHelpers)

install(TARGETS kr_base EXPORT KRbaseTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The public headers, and the internal ones that their templates and inline bodies reach.
file(GLOB public_headers CONFIGURE_DEPENDS src/base/*.h src/base/*.imp src/base/*.inline)
list(FILTER public_headers EXCLUDE REGEX "/rn[A-Za-z]+\\.imp$") # bodies that the library alone instantiates
install(FILES ${public_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/libKRbase/base)
foreach(header
        errors/ownedPtr.h
        errors/sourcePosition.h
        clocks/hwCounterEng.h
        init/inNamedVariable.h
        init/inValueForm.h
        log/lgFormat.h
        log/lgThreadSlot.h
        numeric/rounded.h
        numeric/twosComplement.h)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES src/base/internal/${header}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/libKRbase/base/internal/${folder})
endforeach()
if(WIN32)
    install(FILES ${KR_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KRbase)
install(EXPORT KRbaseTargets NAMESPACE Kr:: DESTINATION ${package_dir})
configure_package_config_file(cmake/KRbaseConfig.cmake.in ${PROJECT_BINARY_DIR}/KRbaseConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KRbaseConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KRbaseConfig.cmake ${PROJECT_BINARY_DIR}/KRbaseConfigVersion.cmake
    DESTINATION ${package_dir})

# The prefix is relative to the file, so that an unpacked or moved package still works.
file(RELATIVE_PATH KR_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
list(JOIN KR_ARITHMETIC_FLAGS " " KR_PC_FLAGS)
configure_file(cmake/KRbase.pc.in ${PROJECT_BINARY_DIR}/KRbase.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/KRbase.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(CPACK_PACKAGE_NAME libKRbase)
set(CPACK_PACKAGE_VENDOR "libKRbase")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/package)
set(CPACK_GENERATOR TGZ)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_SYSTEM_NAME windows-x86)
endif()
set(CPACK_STRIP_FILES ON)
include(CPack)
