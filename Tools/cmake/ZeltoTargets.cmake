# The compile settings every target shares, and the two functions the folders use to say what they are.

add_library(zelto_settings INTERFACE)
target_compile_options(zelto_settings INTERFACE -Wall -Wextra -Wconversion -Wshadow)
option(ZELTO_WARNINGS_ARE_ERRORS "Fail where the compiler warns; a package is built by compilers that warn of more" ON)
if(ZELTO_WARNINGS_ARE_ERRORS)
  target_compile_options(zelto_settings INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(zelto_settings INTERFACE -Wthread-safety)
endif()
target_compile_options(zelto_settings INTERFACE -pthread) # it sets a macro, which precompiled headers want alike everywhere
target_link_libraries(zelto_settings INTERFACE Threads::Threads)
target_compile_definitions(zelto_settings INTERFACE QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)
target_include_directories(zelto_settings INTERFACE "${CMAKE_SOURCE_DIR}")
if(ZELTO_PRECOMPILED_HEADERS AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(zelto_settings INTERFACE -fpch-preprocess) # for ccache
endif()
if(ZELTO_SANITIZE STREQUAL "address")
  target_compile_options(zelto_settings INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(zelto_settings INTERFACE -fsanitize=address,undefined)
elseif(ZELTO_SANITIZE STREQUAL "thread")
  target_compile_options(zelto_settings INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(zelto_settings INTERFACE -fsanitize=thread)
endif()

# A test is built more often than it runs, and most of its time passes in what it tests.
set(zelto_test_options -O0)
# They are nearly half of a build. Who builds to use the program or to measure it does without them.
option(ZELTO_TESTS_IN_ALL "Build the tests with everything else" ON)
add_custom_target(zelto_tests)

# Gives a target the precompiled headers that suit what it links (Tools/headers): core or widgets, for tests with theirs.
function(zelto_precompiled name prefix)
  if(ZELTO_PRECOMPILED_HEADERS)
    set(kind core)
    if("${ARGN}" MATCHES "[Ww]idgets|zelto_interface")
      set(kind widgets)
    endif()
    target_precompile_headers(${name} REUSE_FROM zelto_headers_${prefix}${kind})
  endif()
endfunction()

# zelto_library(NAME [dependencies...]): a static library of every source in the current folder.
# What it links is what it may include; there is no other way to another folder.
function(zelto_library name)
  file(GLOB sources CONFIGURE_DEPENDS "*.cpp" "*.h")
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX) # a folder may hold headers only
  target_link_libraries(${name} PUBLIC zelto_settings ${ARGN})
  zelto_precompiled(${name} "" ${ARGN})
endfunction()

# zelto_test(NAME [dependencies...]): one test program of every source in the current folder.
function(zelto_test name)
  file(GLOB sources CONFIGURE_DEPENDS "*.cpp" "*.h")
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${ARGN} GTest::gtest GTest::gmock)
  target_compile_options(${name} PRIVATE ${zelto_test_options})
  zelto_precompiled(${name} tests_ ${ARGN})
  add_dependencies(zelto_tests ${name})
  if(NOT ZELTO_TESTS_IN_ALL)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "LC_ALL=C.UTF-8;LANGUAGE=;QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=zelto.*.info=false"
                       TIMEOUT 1800)
endfunction()
