// SPDX-License-Identifier: MIT
#pragma once

/// The messages for which the console comes forward: each value takes in those below it.
enum ConsoleShowOnType
{
    ConsoleShowOnDisabled = 0,
    ConsoleShowOnErrors = 1,
    ConsoleShowOnWarnings = 2,
    ConsoleShowOnInfo = 3,
    ConsoleShowOnAnyOutput = 4
};
