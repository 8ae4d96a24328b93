#pragma once

#include "common/FakeUi.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFile>

// TestEnvironment with a stand-in "wine" alone on the PATH and the working
// folder restored afterwards; FakeUi records the start instead of running it.
class WineOnPath : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        savedPath_ = qgetenv("PATH");
        savedCwd_ = QDir::currentPath();
        const QString bin = writeFile(QStringLiteral("bin/wine"), "#!/bin/sh\nexit 0\n");
        QFile::setPermissions(bin, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", (root() + QStringLiteral("/bin")).toUtf8());
    }
    void TearDown() override {
        qputenv("PATH", savedPath_);
        QDir::setCurrent(savedCwd_);
        TestEnvironment::TearDown();
    }

    FakeUi ui;

private:
    QByteArray savedPath_;
    QString savedCwd_;
};
