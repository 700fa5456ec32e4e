#include "demowindow.h"
#include "themeloader.h"

#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/streamingdialog.h>

#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/style.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QMouseEvent>
#include <QTimer>

namespace {

// Adds a stream as an operator would: opens the stream box's dialog, types `url` into the
// address field, clicks the dialog's surface (which finishes the edit and checks the address),
// saves a picture of the dialog to `file`, then confirms, or cancels a refused address.
void addStreamThroughTheDialog(demohost::DemoWindow& window, const QString& url,
                               const QString& file)
{
    vexa::inputsource::StreamingBox* box = nullptr;
    for (vexa::inputsource::InputSourceBox* candidate : window.boxes()) {
        if (auto* stream = qobject_cast<vexa::inputsource::StreamingBox*>(candidate)) {
            box = stream;
        }
    }
    if (box == nullptr) {
        return;
    }
    QTimer::singleShot(400, &window, [url, file] {
        auto* dialog =
            qobject_cast<vexa::inputsource::StreamingDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            return;
        }
        QWidget* editor =
            dialog->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"))->focusProxy();
        editor->setFocus(Qt::MouseFocusReason);
        for (const QChar character : url) {
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
            QApplication::sendEvent(editor, &press);
        }
        QWidget* surface = dialog->dialogWidget();
        const QPoint spot(4, surface->height() - 4);
        QMouseEvent click(QEvent::MouseButtonPress, spot, surface->mapToGlobal(spot),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(surface, &click);
        QApplication::processEvents();
        dialog->grab().save(file);
        const bool refused = editor->property("style").toString() == QStringLiteral("editError");
        dialog
            ->findChild<vexa::widgets::PushButton*>(refused ? QStringLiteral("cancelBtn")
                                                            : QStringLiteral("confirmBtn"))
            ->click();
    });
    box->showDialog();
}

} // namespace

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
    const QCommandLineOption language(QStringLiteral("language"),
                                      QStringLiteral("Start in language <code> (zh_CN, zh_TW, "
                                                     "en_US)."),
                                      QStringLiteral("code"));
    const QCommandLineOption streamDialog(
        QStringLiteral("stream-dialog"),
        QStringLiteral("After a second, add a stream through the dialog and save a picture of "
                       "the dialog to <file>."),
        QStringLiteral("file"));
    const QCommandLineOption streamUrl(
        QStringLiteral("stream-url"),
        QStringLiteral("The address typed with --stream-dialog (default rtsp://10.0.0.8/live)."),
        QStringLiteral("url"), QStringLiteral("rtsp://10.0.0.8/live"));
    parser.addOption(screenshot);
    parser.addOption(quitAfter);
    parser.addOption(language);
    parser.addOption(streamDialog);
    parser.addOption(streamUrl);
    parser.process(app);
    app.setStyleSheet(vexa::widgets::defaultStyleSheet() +
                      demohost::ThemeLoader::styleSheet(demohost::ThemeLoader::themesDir()));

    demohost::DemoWindow window;
    window.resize(1100, 760);
    window.show();
    if (parser.isSet(language)) {
        window.switchLanguage(parser.value(language));
    }
    if (parser.isSet(streamDialog)) {
        QTimer::singleShot(1000, &window, [&window, &parser, &streamUrl, &streamDialog] {
            addStreamThroughTheDialog(window, parser.value(streamUrl), parser.value(streamDialog));
        });
    }

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
