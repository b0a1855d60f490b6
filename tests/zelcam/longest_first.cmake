# What takes longest begins first, so that nothing else has to wait for its end.
foreach(test IN LISTS zelcam_tests_TESTS)
  if(test MATCHES "KilledAtAnyMoment|DemoTest")
    set_tests_properties("${test}" PROPERTIES COST 60)
  endif()
endforeach()
