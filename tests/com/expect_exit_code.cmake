# cmake -DEXPECTED=code -DCOMMAND=program;argument... -P expect_exit_code.cmake
execute_process(COMMAND ${COMMAND} RESULT_VARIABLE code OUTPUT_QUIET ERROR_QUIET)
if(NOT code STREQUAL EXPECTED)
  message(FATAL_ERROR "ended with ${code}, expected ${EXPECTED}")
endif()
