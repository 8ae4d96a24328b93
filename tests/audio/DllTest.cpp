#include "audio/clsDLL.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

const QString kLibc = QStringLiteral("libc.so.6");

TEST(DllTest, CallsExportsReportsAMissingOneAndLeavesNoHandleWhenUnloaded) {
    clsDLL dll;
    dll.UnloadDLL(); // nothing loaded: nothing happens
    dll.SetIsCDECL(true);
    ASSERT_TRUE(dll.LoadDLL(kLibc));
    EXPECT_FALSE(dll.IsCDECL()); // loading resets the calling convention
    EXPECT_EQ(dll.CallFunc<pid_t()>("getpid"), getpid());
    char text[] = "kelvaris";
    EXPECT_EQ(dll.CallFunc<size_t(const char*, int)>("strnlen", text, 3), 3u);
    EXPECT_FALSE(dll.CallFunc<int(int)>("kelvaris_no_such_export", 1).has_value());
    EXPECT_EQ(dll.LastError(), QStringLiteral("Export function not found in DLL!"));
    // A later call that works clears the message.
    EXPECT_EQ(dll.CallFunc<int(int)>("abs", -42), 42);
    EXPECT_EQ(dll.LastError(), QString());

    dll.UnloadDLL();
    dll.UnloadDLL();
    EXPECT_EQ(dll.ModuleHandle(), nullptr);
    EXPECT_FALSE(dll.CallFunc<int(int)>("abs", 1).has_value());
    EXPECT_FALSE(dll.LoadDLL("libkelvaris-no-such-library.so.9"));
    EXPECT_FALSE(dll.LoadDLL(QString()));
    EXPECT_EQ(dll.ModuleHandle(), nullptr);
}

} // namespace
