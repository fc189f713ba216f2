# SPDX-License-Identifier: GPL-3.0-or-later

# What is installed of the benchmark, and where. The server has its own list in server/.
include(GNUInstallDirs)

set(FENNICK_HOMEPAGE "" CACHE STRING
    "Where software centres find Fennick and its pictures (docs/pictures below it): https://..., or nothing")

install(TARGETS fennick fennick-cli RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT benchmark)

# What the console runner says about itself. It cannot be asked where it was built for another machine.
set(FENNICK_SAID "${PROJECT_BINARY_DIR}/said")
if(NOT CMAKE_CROSSCOMPILING)
    set(rows "fennick-cli.1|manual" "fennick-cli.bash|completion bash" "_fennick-cli|completion zsh"
        "fennick-cli.fish|completion fish")
    foreach(row IN LISTS rows)
        string(REGEX REPLACE "\\|.*" "" file "${row}")
        string(REGEX REPLACE ".*\\|" "" words "${row}")
        separate_arguments(words)
        add_custom_command(OUTPUT "${FENNICK_SAID}/${file}"
            COMMAND "${CMAKE_COMMAND}" -E make_directory "${FENNICK_SAID}"
            COMMAND fennick-cli ${words} > "${FENNICK_SAID}/${file}"
            DEPENDS fennick-cli VERBATIM)
        list(APPEND said "${FENNICK_SAID}/${file}")
    endforeach()
    add_custom_target(fennick-said ALL DEPENDS ${said})
    install(FILES "${FENNICK_SAID}/fennick-cli.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT benchmark)
    install(FILES "${FENNICK_SAID}/fennick-cli.bash" RENAME fennick-cli
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT benchmark)
    install(FILES "${FENNICK_SAID}/_fennick-cli"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" COMPONENT benchmark)
    install(FILES "${FENNICK_SAID}/fennick-cli.fish"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT benchmark)
endif()

install(FILES packaging/fennick.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT benchmark)
install(FILES packaging/fennick.desktop DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT benchmark)

foreach(size 16 22 24 32 48 64 128 256 512)
    install(FILES "resources/icons/sizes/fennick-${size}.png" RENAME fennick.png
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps" COMPONENT benchmark)
endforeach()
install(FILES resources/icons/fennick.svg
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT benchmark)

set(FENNICK_METAINFO_LINKS "")
if(FENNICK_HOMEPAGE)
    set(FENNICK_METAINFO_LINKS "  <url type=\"homepage\">${FENNICK_HOMEPAGE}</url>
  <screenshots>
    <screenshot type=\"default\">
      <caption>A full run</caption>
      <image>${FENNICK_HOMEPAGE}/docs/pictures/running.png</image>
    </screenshot>
    <screenshot>
      <caption>The ranking</caption>
      <image>${FENNICK_HOMEPAGE}/docs/pictures/compare-all.png</image>
    </screenshot>
  </screenshots>
")
endif()
configure_file(packaging/org.fennick.fennick.metainfo.xml.in
    "${PROJECT_BINARY_DIR}/org.fennick.fennick.metainfo.xml" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/org.fennick.fennick.metainfo.xml"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo" COMPONENT benchmark)
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT benchmark)
