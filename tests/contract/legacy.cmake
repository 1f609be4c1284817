# The legacy object and the file-open entry, in a program of their own. What they decide without a window is tested
# by itself too: those parts are linked a second time.
add_library(legacy_units STATIC $<TARGET_OBJECTS:legacy> $<TARGET_OBJECTS:convert> $<TARGET_OBJECTS:errors>)
target_include_directories(legacy_units PUBLIC ${PROJECT_SOURCE_DIR}/src)

add_executable(legacy_tests
  legacy/desktop.cpp
  legacy/file_open_apartment_test.cpp
  legacy/file_open_keep_test.cpp
  legacy/file_open_path_test.cpp
  legacy/file_open_plan_test.cpp
  legacy/file_open_registry_test.cpp
  legacy/file_open_test.cpp
  legacy/file_operations_test.cpp
  legacy/late_bound_test.cpp
  legacy/missing_function_test.cpp
  legacy/nested_call_test.cpp
  legacy/nested_recipients_test.cpp
  legacy/open_files_test.cpp
  legacy/order_test.cpp
  legacy/recipient_list_test.cpp
  legacy/recipients_test.cpp
  legacy/resources_test.cpp
  legacy/results_model_test.cpp
  legacy/session_test.cpp
  legacy/sign_files_test.cpp)
target_link_libraries(legacy_tests PRIVATE contract_support legacy_units)
set_target_properties(legacy_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${contract_dir})
add_dependencies(legacy_tests tavlcom_contract)
tavl_test_rooms(legacy_tests contract TIMEOUT 120 ENVIRONMENT oanocache=1)
# They write the name that the file-open entry asks for into the classes of the whole prefix; the checked ones have their own.
set_tests_properties(contract.legacy PROPERTIES RESOURCE_LOCK file_open_name)
