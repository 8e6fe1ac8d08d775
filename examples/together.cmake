# Runs two programs at the same time, the first one's output being the second one's input:
# cmake -DFIRST=PROGRAM -DSECOND=PROGRAM [-DEMULATOR=WORDS] -P together.cmake
execute_process(COMMAND ${EMULATOR} ${FIRST} COMMAND ${EMULATOR} ${SECOND} RESULTS_VARIABLE results)
if(NOT results STREQUAL "0;0")
  message(FATAL_ERROR "the programs ended with ${results}")
endif()
