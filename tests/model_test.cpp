// The models that the fuzzer's targets hold the library against, on random inputs: each is a
// program of its own, which stops where something does not hold.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

class Model : public testing::TestWithParam<const char*> {};

TEST_P(Model, HoldsOnRandomInputs)
{
    const std::string program = std::string(TARND_MODELS "/random_") + GetParam();
    EXPECT_EQ(std::system(program.c_str()), 0);  // NOLINT
}

INSTANTIATE_TEST_SUITE_P(, Model,
                         testing::Values("addresses", "bounded", "conditions", "list", "names",
                                         "platform", "routes"),
                         [](const auto& subject) { return std::string(subject.param); });
