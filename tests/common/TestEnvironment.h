#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Points Kelvaris's per-user folders (settings, work folder, Wine prefix,
// home) at a fresh temporary folder for the length of one test, so no test
// sees another's settings or the developer's own.
class TestEnvironment : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    QString root() const { return dir_.path(); }
    QString configHome() const { return root() + QStringLiteral("/config"); }
    QString cacheHome() const { return root() + QStringLiteral("/cache"); }
    QString winePrefix() const { return root() + QStringLiteral("/wine"); }
    QString storeFile() const { return configHome() + QStringLiteral("/kelvaris/registry.reg"); }

    // Writes `text` into a file below the temporary folder, making folders.
    QString writeFile(const QString& relative, const QByteArray& bytes) const;
    static QByteArray readFile(const QString& path);

private:
    QTemporaryDir dir_;
    QByteArray savedVars_[5];
};
