#include <QCoreApplication>
#include <gtest/gtest.h>

// The core's tests run with a core application alone: no window system, and
// no widget library linked, so the core cannot lean on either.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
