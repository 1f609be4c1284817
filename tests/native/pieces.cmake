# The pieces that need almost nothing of the platform, and their tests: built for Windows with the other unit tests, and
# natively with sanitizers (tests/native).
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
set(portable_pieces
  ${root}/src/convert/dates.cpp
  ${root}/src/legacy/addresses.cpp
  ${root}/src/legacy/subject_name.cpp
  ${root}/src/module/registrar_script.cpp
  ${root}/standin/messages/armour.cpp
  ${root}/standin/messages/ber.cpp
  ${root}/standin/messages/message_reader.cpp)
set(portable_tests
  ${root}/tests/unit/addresses_test.cpp
  ${root}/tests/unit/base64_test.cpp
  ${root}/tests/unit/ber_test.cpp
  ${root}/tests/unit/dates_test.cpp
  ${root}/tests/unit/message_reader_test.cpp
  ${root}/tests/unit/registrar_script_test.cpp
  ${root}/tests/unit/subject_name_test.cpp)
# Tests of the stand-in engine that also run against its native build. Those of GOST have their algorithms from Debian's engine.
set(engine_tests algorithm_test.cpp binding_test.cpp corpus_test.cpp structure_test.cpp gost/hostile_test.cpp)
