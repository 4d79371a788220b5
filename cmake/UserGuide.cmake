# The user guide: docs/guide/*.md become support/guide/*.html in the application folder, with an index for the
# search. A dead link or a chapter that the contents do not name stops the build.
find_package(PkgConfig REQUIRED)
pkg_check_modules(MD4C REQUIRED IMPORTED_TARGET md4c-html md4c)
zentaq_program(zentaq-guide LINK zentaq_guide PkgConfig::MD4C)
set_target_properties(zentaq-guide PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tools)

set(GUIDE_SOURCE ${PROJECT_SOURCE_DIR}/docs/guide)
set(GUIDE_FOLDER ${APP_FOLDER}/support/guide)
file(GLOB guide_pages CONFIGURE_DEPENDS ${GUIDE_SOURCE}/*.md ${GUIDE_SOURCE}/guide.css)
add_custom_command(
  OUTPUT ${GUIDE_FOLDER}/guide.tsv
  COMMAND zentaq-guide ${GUIDE_SOURCE} ${GUIDE_FOLDER}
  DEPENDS zentaq-guide ${guide_pages}
  COMMENT "Making the user guide" VERBATIM)
add_custom_target(zentaq_user_guide ALL DEPENDS ${GUIDE_FOLDER}/guide.tsv)

# The program's help entry names the guide's first page.
configure_file(${GUIDE_SOURCE}/MAIN.hlp ${APP_FOLDER}/support/MAIN.hlp COPYONLY)
