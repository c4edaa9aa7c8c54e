// Stands in for the fuzzer: runs a target once over each file of the folder given. For a compiler without
// libFuzzer.

#include "fuzz/input.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

[[gnu::weak]] int LLVMFuzzerInitialize(int* argc, char*** argv); // a target may have none

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    if (LLVMFuzzerInitialize != nullptr)
        LLVMFuzzerInitialize(&argc, &argv);
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        std::printf("%s\n", entry.path().filename().c_str());
        std::fflush(stdout); // the last line names the input that does not go well
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
