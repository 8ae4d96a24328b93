#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Points Kelvaris's per-user folders (settings, work folder, Wine prefix, home)
// at a fresh temporary folder, so no test sees another's settings or the developer's.
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
    // A FIFO nobody writes to, at an absolute path; whether it was made.
    static bool makeFifo(const QString& path);
    // A fresh, empty game folder "game" below the temporary folder.
    QString makeGame() const;
    // Kelvaris's own settings in the store.
    static QString setting(const QString& name);
    static void storeSetting(const QString& name, const QString& value);

private:
    QTemporaryDir dir_;
    QByteArray savedVars_[5];
};
