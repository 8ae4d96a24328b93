#pragma once

#include <cctype>
#include <gtest/gtest.h>
#include <string>

// A parameterised test's name from its case's `name`: the index, then the
// name with every character but letters and digits turned into "_".
template <typename Case> std::string CaseName(const ::testing::TestParamInfo<Case>& info) {
    std::string name = std::to_string(info.index) + "_" + info.param.name;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return name;
}
