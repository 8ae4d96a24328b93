#include "randomizer/RandomizerArguments.h"

#include <gtest/gtest.h>

namespace {

struct ArgumentsCase {
    QStringList arguments;
    QStringList passedOn;
};

class PassThrough : public ::testing::TestWithParam<ArgumentsCase> {};

TEST_P(PassThrough, CutsTheFirstOfEachSwitchAndKeepsTheRestExactly) {
    EXPECT_EQ(PassThroughArguments(GetParam().arguments), GetParam().passedOn);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, PassThrough,
    ::testing::Values(ArgumentsCase{{"-randomizer", "-x", "1"}, {"-x", "1"}},
                      ArgumentsCase{{"-randomizer"}, {}},
                      ArgumentsCase{{"-a", "-randomizer", "-b"}, {"-a", "-b"}},
                      ArgumentsCase{{"-randomizer", "-skipupdate", "-x"}, {"-x"}},
                      ArgumentsCase{{"-skipupdate", "-randomizer"}, {}},
                      ArgumentsCase{{"-randomizer", "-randomizer"}, {"-randomizer"}},
                      ArgumentsCase{{"-randomizer", "-skipupdate", "-skipupdate"}, {"-skipupdate"}},
                      ArgumentsCase{{"-Randomizer", "-x"}, {"-Randomizer", "-x"}},
                      // A switch inside a longer argument is cut from it, the rest kept.
                      ArgumentsCase{{"--x=-randomizer-y", "-skipupdateZ"}, {"--x=-y", "Z"}},
                      // Blanks, quotes and empty arguments reach the client as given.
                      ArgumentsCase{
                          {"-randomizer", "-project", "City of Heroes", "", "say \"hi\"", ""},
                          {"-project", "City of Heroes", "", "say \"hi\"", ""}}),
    [](const auto& info) { return std::to_string(info.index); });

} // namespace
