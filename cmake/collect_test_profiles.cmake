# Gathers the KR_TEST_PROFILE line of every transition module into one file
# the emulator includes (emulator/test_profile.cpp).
#   cmake -DOUTPUT=file -DSOURCES="a.cpp;b.cpp" -P collect_test_profiles.cmake
set(content "// Generated from the transition modules' KR_TEST_PROFILE lines.\n")
foreach(source IN LISTS SOURCES)
  file(STRINGS "${source}" lines REGEX "^KR_TEST_PROFILE\\(")
  foreach(line IN LISTS lines)
    string(APPEND content "${line}\n")
  endforeach()
endforeach()
# Rewritten only when it changes, so that an unrelated edit rebuilds nothing.
file(WRITE "${OUTPUT}.new" "${content}")
file(COPY_FILE "${OUTPUT}.new" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.new")
