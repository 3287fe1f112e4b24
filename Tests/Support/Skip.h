// Skips the running test for want of something that the machine would have to offer, and says so on the error output,
// since nobody reads the list of skipped tests. Where nothing may be skipped (ZELTO_TESTS_MUST_NOT_SKIP in the
// environment) the test fails instead. From a test or its SetUp: return skipWithout("extended attributes").

#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

inline void skipWithout(const char *what)
{
    const auto *test = testing::UnitTest::GetInstance()->current_test_info();
    std::fprintf(stderr, "NOT TESTED: %s.%s, for want of %s\n", test ? test->test_suite_name() : "",
                 test ? test->name() : "", what);
    if (std::getenv("ZELTO_TESTS_MUST_NOT_SKIP")) {
        FAIL() << "this machine has no " << what << ", and no test may be skipped";
    }
    GTEST_SKIP() << "for want of " << what;
}
