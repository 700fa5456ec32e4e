#include "demowindow.h"
#include "themeloader.h"

#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/streamingdialog.h>

#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/style.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
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

QWidget* ndiDialog()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String("ndiDialog") && widget->isVisible()) {
            return widget;
        }
    }
    return nullptr;
}

QWidget* ndiRow(int index)
{
    QWidget* const dialog = ndiDialog();
    auto* const list =
        dialog == nullptr ? nullptr : dialog->findChild<QListWidget*>(QStringLiteral("ndiList"));
    return list == nullptr || index >= list->count() ? nullptr
                                                     : list->itemWidget(list->item(index));
}

void save(const QPixmap& picture, const QString& path)
{
    if (!picture.save(path)) {
        QCoreApplication::exit(1);
    }
}

// Opens the NDI dialog and saves three pictures while discovery fills it: the list after the
// first answer (<base>-filling.png), some senders ticked (<base>-halfchecked.png) and a
// receiver name refused with its notice open over the dialog (<base>-refused.png); then quits.
void shootNdiDialog(QWidget* window, const QString& base)
{
    auto* const add = window->findChild<QWidget*>(QStringLiteral("box7"))
                          ->findChild<QPushButton*>(QStringLiteral("boxAddButton"));
    QTimer::singleShot(1000, add, &QPushButton::click);
    QTimer::singleShot(1400, window, [base] {
        if (QWidget* const dialog = ndiDialog()) {
            save(dialog->grab(), base + QStringLiteral("-filling.png"));
        }
    });
    QTimer::singleShot(2600, window, [base] {
        for (const int index : {2, 4, 5}) {
            if (QWidget* const row = ndiRow(index)) {
                row->findChild<QPushButton*>(QStringLiteral("ndiCheckBtn"))->click();
            }
        }
        if (QWidget* const dialog = ndiDialog()) {
            save(dialog->grab(), base + QStringLiteral("-halfchecked.png"));
        }
    });
    QTimer::singleShot(2800, window, [base] {
        QTimer::singleShot(500, [base] {
            save(QGuiApplication::primaryScreen()->grabWindow(0),
                 base + QStringLiteral("-refused.png"));
            QCoreApplication::exit(0);
        });
        QWidget* const row = ndiRow(3);
        QWidget* const next = ndiRow(4);
        if (row == nullptr || next == nullptr) {
            return;
        }
        auto* const editor = row->findChild<QLineEdit*>(QStringLiteral("editor"));
        editor->setFocus();
        // A name another source already has; leaving the field asks the manager.
        editor->setText(QStringLiteral("CAM-NORTH"));
        next->findChild<QLineEdit*>(QStringLiteral("editor"))->setFocus();
    });
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
    const QCommandLineOption ndi(
        QStringLiteral("ndi-dialog"),
        QStringLiteral(
            "With --screenshot <file>: open the NDI dialog and save three pictures of it "
            "as <file>-filling.png, <file>-halfchecked.png and <file>-refused.png."));
    parser.addOption(ndi);
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

    if (parser.isSet(screenshot) && parser.isSet(ndi)) {
        QString base = parser.value(screenshot);
        base.remove(QRegularExpression(QStringLiteral("\\.png$")));
        shootNdiDialog(&window, base);
    } else if (parser.isSet(screenshot)) {
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
