# Gathers the KR_TEST_PROFILE line of every transition module into one file
# the emulator includes (emulator/test_profile.cpp), and checks that a
# module's file is named for the transition it declares: KrDeclareFadeDissolve
# lives in fade_dissolve.cpp.
#   cmake -DOUTPUT=file -DSOURCES="a.cpp;b.cpp" -P collect_test_profiles.cmake
set(content "// Generated from the transition modules' KR_TEST_PROFILE lines.\n")
foreach(source IN LISTS SOURCES)
  file(STRINGS "${source}" declared REGEX "^KR_TRANSITION(_WITH_USER_DATA|_WITH_INIT_ORDER)?\\([A-Za-z0-9]+,")
  foreach(line IN LISTS declared)
    string(REGEX REPLACE "^KR_TRANSITION(_WITH_USER_DATA|_WITH_INIT_ORDER)?\\(([A-Za-z0-9]+),.*" "\\2" name "${line}")
    string(REGEX REPLACE "([a-z0-9])([A-Z])" "\\1_\\2" snake "${name}")
    string(TOLOWER "${snake}" snake)
    get_filename_component(stem "${source}" NAME_WE)
    if(NOT stem STREQUAL snake)
      message(FATAL_ERROR "${source} declares ${name}: its file should be named ${snake}.cpp")
    endif()
  endforeach()
  file(STRINGS "${source}" lines REGEX "^KR_TEST_PROFILE\\(")
  foreach(line IN LISTS lines)
    string(APPEND content "${line}\n")
  endforeach()
endforeach()
# Rewritten only when it changes, so that an unrelated edit rebuilds nothing.
file(WRITE "${OUTPUT}.new" "${content}")
file(COPY_FILE "${OUTPUT}.new" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.new")
