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

# The sample calibrations are made from readable texts, through the same core that a tuner's new one goes through.
zentaq_program(zentaq-samples LINK zentaq_calibration)
set_target_properties(zentaq-samples PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tools)
set(SAMPLE_TEXTS ${PROJECT_SOURCE_DIR}/data/samples)
file(GLOB sample_texts CONFIGURE_DEPENDS ${SAMPLE_TEXTS}/*.txt)
set(SAMPLES_STAMP ${PROJECT_BINARY_DIR}/samples.stamp)
add_custom_command(
  OUTPUT ${SAMPLES_STAMP}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${APP_FOLDER}/samples
  COMMAND zentaq-samples ${REFERENCE_DATABASE} ${SAMPLE_TEXTS} ${APP_FOLDER}/samples
  COMMAND ${CMAKE_COMMAND} -E touch ${SAMPLES_STAMP}
  DEPENDS zentaq-samples ${REFERENCE_DATABASE} ${sample_texts}
  COMMENT "Making the sample calibrations" VERBATIM)
add_custom_target(zentaq_samples ALL DEPENDS ${SAMPLES_STAMP})

# The pictures of the dashboard, which a user may replace by his own: made.sha256 tells which ones are ours.
zentaq_program(zentaq-faces QT LINK zentaq_windows)
set_target_properties(zentaq-faces PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tools)
set(FACES_LIST ${APP_FOLDER}/bin/images/made.sha256)
add_custom_command(
  OUTPUT ${FACES_LIST}
  COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen $<TARGET_FILE:zentaq-faces> ${APP_FOLDER}/bin/images
  DEPENDS zentaq-faces
  COMMENT "Drawing the dashboard" VERBATIM)
add_custom_target(zentaq_faces ALL DEPENDS ${FACES_LIST})

# The manual page: `man -M build/<preset>/app/man zentaqctl` shows it.
include(GNUInstallDirs)
configure_file(${PROJECT_SOURCE_DIR}/docs/man/zentaqctl.1 ${APP_FOLDER}/man/man1/zentaqctl.1 COPYONLY)
install(FILES docs/man/zentaqctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
