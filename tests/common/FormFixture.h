#pragma once

#include "TestEnvironment.h"
#include "app/Form1.h"
#include "app/SettingsTab.h"
#include "common/FakeUi.h"

#include <QDir>
#include <QImage>
#include <QPushButton>
#include <memory>

// The window as a tab's tests drive it: TestEnvironment, a scripted desktop,
// and Form1 with its game folder set to a fresh folder below the temporary one.
class FormFixture : public TestEnvironment {
protected:
    explicit FormFixture(QString gameName = "game") : gameName_(std::move(gameName)) {}

    void SetUp() override {
        TestEnvironment::SetUp();
        game = root() + u'/' + gameName_;
        QDir().mkpath(game);
        form = std::make_unique<Form1>(ui, QStringList{});
        form->Settings().SetGameFolder(game);
    }

    // A control of the window by its object name.
    template <typename T> T* control(const char* name) {
        return form->findChild<T*>(QString::fromLatin1(name));
    }
    void click(const char* button) { control<QPushButton>(button)->click(); }
    // Clicks `button` and answers the file dialog it opens with `path`.
    void choose(const char* button, const QString& path) {
        ui.openAnswers.push_back(path);
        click(button);
    }
    // Saves `image` below the temporary folder, in the format its name tells.
    QString picture(const QString& relative, const QImage& image) const {
        const QString path = writeFile(relative, {});
        image.save(path);
        return path;
    }

    FakeUi ui;
    QString game;
    std::unique_ptr<Form1> form;

private:
    QString gameName_;
};
