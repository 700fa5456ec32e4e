#include "demowindow.h"
#include "themeloader.h"

#include <vexa/widgets/style.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("demohost"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Runs the input sources panel against simulated sources."));
    parser.addHelpOption();
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Save a picture of the window to <file> after a few seconds, then quit."),
        QStringLiteral("file"));
    const QCommandLineOption quitAfter(QStringLiteral("quit-after"),
                                       QStringLiteral("Quit after <ms> milliseconds."),
                                       QStringLiteral("ms"));
    parser.addOption(screenshot);
    parser.addOption(quitAfter);
    parser.process(app);
    app.setStyleSheet(vexa::widgets::defaultStyleSheet() +
                      demohost::ThemeLoader::styleSheet(demohost::ThemeLoader::themesDir()));

    demohost::DemoWindow window;
    window.resize(1100, 760);
    window.show();

    if (parser.isSet(screenshot)) {
        const QString path = parser.value(screenshot);
        QTimer::singleShot(2500, &window, [&window, path] {
            const bool saved = window.grab().save(path);
            QCoreApplication::exit(saved ? 0 : 1);
        });
    }
    if (parser.isSet(quitAfter)) {
        QTimer::singleShot(parser.value(quitAfter).toInt(), &app, &QCoreApplication::quit);
    }
    return app.exec();
}
