// SPDX-License-Identifier: MIT
#include "fuzz/DragPayloadUse.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // It lives as long as the program, since the widgets do.
    static auto* const application = new QApplication(*argc, *argv);
    return application ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    const std::string fault = UseDragPayload(bytes, size);
    if (!fault.empty())
    {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
