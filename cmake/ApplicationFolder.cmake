# build/<preset>/app is a complete application folder: programs, bin/data,
# bin/images, support.
set(APP_FOLDER ${PROJECT_BINARY_DIR}/app)
file(MAKE_DIRECTORY ${APP_FOLDER}/bin/data ${APP_FOLDER}/bin/images ${APP_FOLDER}/support)

# The reference database is made from the seed tables by a program of the build itself.
zentaq_program(zentaq-refdata LINK zentaq_refdata)
set_target_properties(zentaq-refdata PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tools)
set(REFERENCE_SEEDS ${PROJECT_SOURCE_DIR}/data/seeds)
set(REFERENCE_DATABASE ${APP_FOLDER}/bin/data/zentaq410-02.pak)
file(GLOB seed_tables CONFIGURE_DEPENDS ${REFERENCE_SEEDS}/*.tsv)
add_custom_command(
  OUTPUT ${REFERENCE_DATABASE}
  COMMAND zentaq-refdata ${REFERENCE_SEEDS} ${REFERENCE_DATABASE}
  DEPENDS zentaq-refdata ${seed_tables}
  COMMENT "Making the reference database" VERBATIM)
add_custom_target(zentaq_reference_database ALL DEPENDS ${REFERENCE_DATABASE})
