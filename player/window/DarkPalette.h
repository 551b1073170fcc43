// SPDX-License-Identifier: MIT
#pragma once

#include <QPalette>

/// The player's colours: dark, so that pictures are judged without glare round them.
QPalette DarkPalette();
