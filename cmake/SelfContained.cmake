# Puts the libraries and plugins that a desktop lacks into the bundle, each with its license. Included by the
# project, this file declares the command. As a script (cmake -P), it is that command.
cmake_minimum_required(VERSION 3.25)

if(NOT CMAKE_SCRIPT_MODE_FILE)
    find_package(Python3 REQUIRED COMPONENTS Interpreter)
    find_program(PATCHELF patchelf REQUIRED)
    set(origins "${PROJECT_BINARY_DIR}/origins.txt") # one line for each copied file
    set(licenses "${CMAKE_CURRENT_LIST_DIR}/licenses.py")
    add_custom_command(OUTPUT "${origins}"
        COMMAND ${CMAKE_COMMAND} "-DAPPLICATION=$<TARGET_FILE:application>" "-DFETCH=$<TARGET_FILE:fetch-module>"
            "-DDESKTOP=$<TARGET_FILE:desktop-module>"
            "-DARCHIVES=$<TARGET_FILE:CURL::libcurl>:${OPENSSL_SSL_LIBRARY}:${OPENSSL_CRYPTO_LIBRARY}"
            "-DQT_PLUGINS=${QT6_INSTALL_PREFIX}/${QT6_INSTALL_PLUGINS}" "-DQT_LIBRARIES=$<TARGET_FILE_DIR:Qt6::Core>"
            "-DCONTENTS=${HELPER_BUNDLE_CONTENTS}"
            "-DEXPAT=${EXPAT_LIBRARY}" "-DPATCHELF=${PATCHELF}" "-DCOMPILER=${CMAKE_CXX_COMPILER}"
            "-DORIGINS=${origins}" "-DQT=${HELPER_QT}" -P "${CMAKE_CURRENT_LIST_FILE}"
        COMMAND ${Python3_EXECUTABLE} "${licenses}" "${HELPER_BUNDLE_CONTENTS}" "${origins}"
            "${HELPER_IDENTIFIER}" "${HELPER_VERSION}" "${HELPER_COMPANY_NAME}" "${HELPER_LICENSE}"
        DEPENDS helper application fetch-module desktop-module curl "${CMAKE_CURRENT_LIST_FILE}"
            "${CMAKE_CURRENT_LIST_DIR}/join-qt" "${licenses}" ${HELPER_LICENSE}
        COMMENT "Putting libraries, plugins and their licenses into the bundle"
        VERBATIM)
    add_custom_target(self-contained DEPENDS "${origins}")
    add_dependencies(bundle self-contained)
    return()
endif()

# Plugins for X11 and Wayland, the desktop's colors and fonts, and input methods. The window does without image
# formats, GL on X11 and printing. On Wayland, Debian's Qt needs the EGL plugin to draw the title bar.
set(plugins
    platforms/libqxcb.so
    platforms/libqwayland-generic.so
    wayland-shell-integration/libxdg-shell.so
    wayland-decoration-client/libbradient.so
    platformthemes/libqgtk3.so
    platforminputcontexts/libcomposeplatforminputcontextplugin.so
    platforminputcontexts/libibusplatforminputcontextplugin.so)
if(QT STREQUAL "system")
    list(APPEND plugins wayland-graphics-integration-client/libqt-plugin-wayland-egl.so)
endif()

# Libraries that every desktop has and that must match the rest of its system. The list follows the AppImage
# project's exclude list, with D-Bus, and with GTK for the desktops' theme. A bundle with Debian's Qt contains
# libOpenGL, because GNOME, Xfce, MATE and Cinnamon of Debian 13 do not install it (their packages, 2026-11-24).
set(of_system
    ld-linux[^.]* libc libm libdl libpthread librt libresolv libutil libstdc\\+\\+ libgcc_s libz
    libX11 libX11-xcb libxcb libICE libSM libwayland-client libEGL libGL libGLX libGLdispatch
    libfontconfig libfreetype libharfbuzz
    libglib-2\\.0 libgobject-2\\.0 libgio-2\\.0 libgmodule-2\\.0 libdbus-1
    libgtk-3 libgdk-3 libpango-1\\.0 libgdk_pixbuf-2\\.0)
list(JOIN of_system "|" of_system)

cmake_path(GET APPLICATION PARENT_PATH frameworks)
file(GLOB old "${frameworks}/*")
list(REMOVE_ITEM old "${APPLICATION}" "${FETCH}" "${DESKTOP}")
file(REMOVE_RECURSE ${old} "${CONTENTS}/PlugIns")
file(REMOVE "${ORIGINS}")

# take(FILE DESTINATION): copies a file to a path below CONTENTS and records its origin.
function(take file destination)
    file(REAL_PATH "${file}" original)
    file(COPY_FILE "${original}" "${CONTENTS}/${destination}")
    file(APPEND "${ORIGINS}" "${destination}\t${original}\n")
endfunction()

# Name Qt's libraries, because CMake would find the system's and not those of a lean Qt, which joins four of them.
if(QT STREQUAL "lean")
    set(qt_libraries Qt6 Qt6WaylandClient Qt6XcbQpa)
else()
    set(qt_libraries Qt6Core Qt6DBus Qt6Gui Qt6WaylandClient Qt6Widgets Qt6XcbQpa)
endif()
foreach(name ${qt_libraries})
    set(library "lib${name}.so.6")
    take("${QT_LIBRARIES}/${library}" "Frameworks/${library}")
    list(APPEND originals "${QT_LIBRARIES}/${library}")
endforeach()
foreach(plugin ${plugins})
    cmake_path(GET plugin PARENT_PATH folder)
    file(MAKE_DIRECTORY "${CONTENTS}/PlugIns/${folder}")
    take("${QT_PLUGINS}/${plugin}" "PlugIns/${plugin}")
    # Give each plugin its own DT_RPATH, because the loading library's path does not apply to it.
    execute_process(COMMAND_ERROR_IS_FATAL ANY
        COMMAND "${PATCHELF}" --force-rpath --set-rpath $ORIGIN/../../Frameworks "${CONTENTS}/PlugIns/${plugin}")
    list(APPEND originals "${QT_PLUGINS}/${plugin}")
endforeach()
if(QT STREQUAL "lean") # put a smaller library in the place of the one with all names
    execute_process(COMMAND_ERROR_IS_FATAL ANY
        COMMAND ${CMAKE_COMMAND} -E env "CXX=${COMPILER}" "${CMAKE_CURRENT_LIST_DIR}/join-qt"
            "${QT_LIBRARIES}" "${CONTENTS}/Frameworks/libQt6.so.6" "${APPLICATION}" "${DESKTOP}" ${originals})
endif()
file(GET_RUNTIME_DEPENDENCIES
    LIBRARIES "${APPLICATION}" "${FETCH}" "${DESKTOP}" ${originals}
    PRE_EXCLUDE_REGEXES "^(${of_system})\\.so(\\..*)?$" "^libQt6"
    RESOLVED_DEPENDENCIES_VAR libraries)
foreach(library ${libraries})
    cmake_path(GET library FILENAME name)
    take("${library}" "Frameworks/${name}")
endforeach()
# The archives that the fetch module links statically.
string(REPLACE ":" ";" archives "${ARCHIVES}")
cmake_path(GET FETCH FILENAME name)
foreach(archive ${archives})
    file(APPEND "${ORIGINS}" "Frameworks/${name}\t${archive}\n")
endforeach()
# The process entry links the C++ library statically.
execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND "${COMPILER}" -print-file-name=libstdc++.a
    OUTPUT_VARIABLE archive OUTPUT_STRIP_TRAILING_WHITESPACE)
file(REAL_PATH "${archive}" archive)
file(APPEND "${ORIGINS}" "Linux/Subscription Helper\t${archive}\n")
# The application library links expat statically.
cmake_path(GET APPLICATION FILENAME name)
file(APPEND "${ORIGINS}" "Frameworks/${name}\t${EXPAT}\n")

# Refuse files that need newer C or C++ libraries than Ubuntu 22.04 has.
set(newest_GLIBC 2.35)
set(newest_GLIBCXX 3.4.30)
file(GLOB_RECURSE files "${CONTENTS}/Linux/Subscription Helper" "${CONTENTS}/Frameworks/*" "${CONTENTS}/PlugIns/*")
foreach(file ${files})
    execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND readelf --version-info "${file}" OUTPUT_VARIABLE versions)
    string(REGEX MATCHALL "Name: GLIBC(XX)?_[0-9.]+" versions "${versions}")
    foreach(version ${versions})
        string(REGEX MATCH "(GLIBC|GLIBCXX)_(.*)" version "${version}")
        if(CMAKE_MATCH_2 VERSION_GREATER "${newest_${CMAKE_MATCH_1}}")
            message(FATAL_ERROR "${file} needs ${version}, but the package must run with ${newest_${CMAKE_MATCH_1}}")
        endif()
    endforeach()
endforeach()
