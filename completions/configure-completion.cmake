# Makes a completion script from its template, with every setting key the
# program knows, as the key-listing tool prints them.
#   cmake -DKEYS_TOOL=... -DTEMPLATE=... -DOUTPUT=... -P configure-completion.cmake
execute_process(COMMAND ${KEYS_TOOL} OUTPUT_VARIABLE keys RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR keys STREQUAL "")
  message(FATAL_ERROR "${KEYS_TOOL} listed no setting keys (${status})")
endif()
string(STRIP "${keys}" keys)
string(REPLACE "\n" " " LANTERNBUD_SETTING_KEYS "${keys}")
configure_file(${TEMPLATE} ${OUTPUT} @ONLY)
