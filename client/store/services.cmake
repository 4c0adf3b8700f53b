# The services around the database: text, times, files, environment, log, threads.
target_sources(pavex_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/body_text.cpp
  ${CMAKE_CURRENT_LIST_DIR}/charset.cpp
  ${CMAKE_CURRENT_LIST_DIR}/clock.cpp
  ${CMAKE_CURRENT_LIST_DIR}/composite.cpp
  ${CMAKE_CURRENT_LIST_DIR}/compound_text.cpp
  ${CMAKE_CURRENT_LIST_DIR}/environment.cpp
  ${CMAKE_CURRENT_LIST_DIR}/error_text.cpp
  ${CMAKE_CURRENT_LIST_DIR}/files.cpp
  ${CMAKE_CURRENT_LIST_DIR}/formula.cpp
  ${CMAKE_CURRENT_LIST_DIR}/host.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ini_file.cpp
  ${CMAKE_CURRENT_LIST_DIR}/log.cpp
  ${CMAKE_CURRENT_LIST_DIR}/log_format.cpp
  ${CMAKE_CURRENT_LIST_DIR}/mail_fields.cpp
  ${CMAKE_CURRENT_LIST_DIR}/names.cpp
  ${CMAKE_CURRENT_LIST_DIR}/path.cpp
  ${CMAKE_CURRENT_LIST_DIR}/policy.cpp
  ${CMAKE_CURRENT_LIST_DIR}/rendered_note.cpp
  ${CMAKE_CURRENT_LIST_DIR}/richtext.cpp
  ${CMAKE_CURRENT_LIST_DIR}/seal.cpp
  ${CMAKE_CURRENT_LIST_DIR}/status.cpp
  ${CMAKE_CURRENT_LIST_DIR}/threads.cpp
  ${CMAKE_CURRENT_LIST_DIR}/time_calls.cpp
  ${CMAKE_CURRENT_LIST_DIR}/timedate.cpp
  ${CMAKE_CURRENT_LIST_DIR}/translate.cpp
  ${CMAKE_CURRENT_LIST_DIR}/value_text.cpp)
