# Included by the mutation run's own configuration after project(): adds MutantRoom.cpp to the test programs that run.
function(zelto_add_rooms)
  foreach(test ${MUTATE_TESTS})
    if(TARGET ${test})
      target_sources(${test} PRIVATE "${MUTATE_TOOL}/MutantRoom.cpp")
    endif()
  endforeach()
endfunction()
cmake_language(DEFER DIRECTORY "${CMAKE_SOURCE_DIR}" CALL zelto_add_rooms)
