#include "randomizer/RandomizerArguments.h"

#include <gtest/gtest.h>

namespace {

struct ArgumentsCase {
    const char* commandLine;
    const char* passedOn;
};

class PassThrough : public ::testing::TestWithParam<ArgumentsCase> {};

TEST_P(PassThrough, CutsTheFirstOfEachSwitch) {
    EXPECT_EQ(PassThroughArguments(QString::fromLatin1(GetParam().commandLine)),
              QString::fromLatin1(GetParam().passedOn));
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, PassThrough,
    ::testing::Values(ArgumentsCase{"-randomizer -x 1", "  -x 1"},
                      ArgumentsCase{"-randomizer", " "},
                      ArgumentsCase{"-a -randomizer -b", " -a  -b"},
                      ArgumentsCase{"-randomizer -skipupdate -x", "   -x"},
                      ArgumentsCase{"-skipupdate -randomizer", "  "},
                      ArgumentsCase{"-randomizer -randomizer", "  -randomizer"},
                      ArgumentsCase{"-randomizer -skipupdate -skipupdate", "   -skipupdate"},
                      ArgumentsCase{"-Randomizer -x", " -Randomizer -x"},
                      ArgumentsCase{"-randomizer -project \"City of Heroes\"",
                                    "  -project \"City of Heroes\""}),
    [](const auto& info) { return std::to_string(info.index); });

} // namespace
