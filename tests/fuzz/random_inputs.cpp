// A fuzzing target on random inputs, the same in each run, for builds without a fuzzer.
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main()
{
    std::mt19937 random(20261124);
    std::vector<uint8_t> input;
    for (int run = 0; run < 2000; run++) {
        input.resize(random() % 400);
        for (uint8_t& byte : input) {
            byte = static_cast<uint8_t>(random());
        }
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
}
