// SPDX-License-Identifier: MIT
#include "support/TestRegistry.h"

TestFactories& RegisteredTests()
{
    static TestFactories tests;
    return tests;
}
