#include "app/Form1.h"
#include "app/RealUiServices.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelvaris"));
    // In the randomizer mode the window never shows, so closing it must end
    // the program by itself.
    QApplication::setQuitOnLastWindowClosed(false);

    RealUiServices ui;
    Form1 form(ui, QApplication::arguments().mid(1));
    ui.SetParentWindow(&form);
    QObject::connect(&form, &Form1::Unloaded, &app, &QCoreApplication::quit);

    form.Form_Load();
    if (form.IsUnloaded())
        return 0;
    if (!form.RandomizerMode())
        form.show();
    return app.exec();
}
