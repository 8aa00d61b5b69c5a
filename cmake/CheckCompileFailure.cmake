# Compiles SOURCE twice: as it stands, which must succeed, and with CVARS_MUST_NOT_COMPILE, which
# must fail with a message that EXPECT matches. INCLUDES are the include folders, "|" between them.
string(REPLACE "|" ";" folders "${INCLUDES}")
set(command "${COMPILER}" -std=c++20 -fsyntax-only)
foreach(folder IN LISTS folders)
  list(APPEND command "-I${folder}")
endforeach()
set(ENV{LC_ALL} C)

execute_process(COMMAND ${command} "${SOURCE}" RESULT_VARIABLE result ERROR_VARIABLE messages)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "must compile without the offending lines:\n${messages}")
endif()

execute_process(COMMAND ${command} -DCVARS_MUST_NOT_COMPILE "${SOURCE}"
  RESULT_VARIABLE result ERROR_VARIABLE messages)
if(result EQUAL 0)
  message(FATAL_ERROR "compiles, and must not")
endif()
if(NOT messages MATCHES "${EXPECT}")
  message(FATAL_ERROR "is refused for another reason than \"${EXPECT}\":\n${messages}")
endif()
