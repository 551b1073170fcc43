// SPDX-License-Identifier: MIT
// Feeds the reader of the command port what the fuzzer makes up, and holds it to the second statement of its
// rules. Run: build/fuzz/bin/fuzz_command_port_reader -max_len=80000 -max_total_time=60
#include "scripting/PortReaderModel.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte chooses the pieces.
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));
    for (const int longest : {1 << 30, 1 + data[0]})
    {
        const QString difference = PortReaderModel::Difference(bytes, longest, data[0]);
        if (!difference.isEmpty())
        {
            std::fprintf(stderr, "%s\n", qUtf8Printable(difference));
            std::abort();
        }
    }
    return 0;
}
