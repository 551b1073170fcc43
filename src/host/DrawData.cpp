// SPDX-License-Identifier: MIT
#include "host/DrawData.h"

DrawData::DrawData() = default;
DrawData::DrawData(const DrawData& other) = default;
DrawData& DrawData::operator=(const DrawData& other) = default;
DrawData::~DrawData() = default;
