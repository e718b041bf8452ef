// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target once on each file that is named, where there is no libFuzzer.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fputs("No seeds: name the files to run the target on.\n", stderr);
        return 1;
    }
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), {});
        if (!file) {
            std::fprintf(stderr, "%s cannot be read.\n", argv[i]);
            return 1;
        }
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    }
    return 0;
}
