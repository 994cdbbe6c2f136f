# Version and build date of the library, fixed at configure time.
# The date honours SOURCE_DATE_EPOCH (string(TIMESTAMP) reads it), so builds are reproducible.
string(TIMESTAMP _tarvo_month "%m" UTC)
string(TIMESTAMP _tarvo_day "%d" UTC)
string(TIMESTAMP TARVO_BUILD_YEAR "%Y" UTC)
set(_tarvo_months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
math(EXPR _tarvo_month_index "${_tarvo_month} - 1")
list(GET _tarvo_months ${_tarvo_month_index} TARVO_BUILD_MONTH)
math(EXPR TARVO_BUILD_DAY "${_tarvo_day}")
set(TARVO_BUILD_DATE "${TARVO_BUILD_MONTH} ${TARVO_BUILD_DAY} ${TARVO_BUILD_YEAR}")

# V<major>.<minor>-<build>: two digits, one digit, three digits.
set(_v_major "0${PROJECT_VERSION_MAJOR}")
string(SUBSTRING "${_v_major}" 0 2 _v_major)
if(PROJECT_VERSION_MAJOR GREATER 9)
  set(_v_major "${PROJECT_VERSION_MAJOR}")
endif()
set(_v_build "00${PROJECT_VERSION_PATCH}")
string(LENGTH "${_v_build}" _len)
math(EXPR _start "${_len} - 3")
string(SUBSTRING "${_v_build}" ${_start} 3 _v_build)
set(TARVO_VERSION_TEXT "V${_v_major}.${PROJECT_VERSION_MINOR}-${_v_build}")
message(STATUS "Tarvo version ${TARVO_VERSION_TEXT}, built ${TARVO_BUILD_DATE}")
