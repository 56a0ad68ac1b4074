# quillon_add_test(NAME <name> SOURCES <files…> [LIBS <targets…>] [GUI])
# One Qt Test executable, registered with CTest. Tests run hermetically: Qt's
# standard paths are in test mode and HOME/XDG dirs are set by each test itself.
# GUI tests draw offscreen so they need no display.
function(quillon_add_test)
  cmake_parse_arguments(T "GUI" "NAME" "SOURCES;LIBS" ${ARGN})
  add_executable(${T_NAME} ${T_SOURCES})
  target_link_libraries(${T_NAME} PRIVATE Qt6::Test ${T_LIBS})
  target_include_directories(${T_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  set_target_properties(${T_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${T_NAME} COMMAND ${T_NAME})
  set(env "QT_LOGGING_RULES=quillon.*=true")
  if(T_GUI)
    list(APPEND env "QT_QPA_PLATFORM=offscreen")
  endif()
  set_tests_properties(${T_NAME} PROPERTIES ENVIRONMENT "${env}" TIMEOUT 120)
endfunction()
