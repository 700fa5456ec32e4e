// SPDX-License-Identifier: MIT
#include "demowindow.h"
#include "simulatedinputsourcemgr.h"
#include "themeloader.h"

#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/streamingdialog.h>
#include <vexainputsourcewidget/webbox.h>
#include <vexainputsourcewidget/webdialog.h>

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
#include <QScrollArea>
#include <QTimer>

#include <functional>

namespace {

// The first box of class Box in the window, or null.
template <typename Box>
Box* boxOf(demohost::DemoWindow& window)
{
    for (vexa::inputsource::InputSourceBox* candidate : window.boxes()) {
        if (auto* box = qobject_cast<Box*>(candidate)) {
            return box;
        }
    }
    return nullptr;
}

// Types `text` into a dialog's field as an operator would: the field takes the focus, what it
// held is selected and replaced key by key. The edit is still under way.
void typeInto(vexa::widgets::EditBox* field, const QString& text)
{
    QWidget* const editor = field->focusProxy();
    editor->setFocus(Qt::MouseFocusReason);
    if (auto* const line = qobject_cast<QLineEdit*>(editor)) {
        line->selectAll();
    }
    for (const QChar character : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
        QApplication::sendEvent(editor, &press);
    }
}

// Clicks the dialog's own surface, which ends the edit under way so that its rules apply.
void clickSurface(vexa::widgets::Dialog* dialog)
{
    QWidget* surface = dialog->dialogWidget();
    const QPoint spot(4, surface->height() - 4);
    QMouseEvent click(QEvent::MouseButtonPress, spot, surface->mapToGlobal(spot), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(surface, &click);
    QApplication::processEvents();
}

// Adds a stream as an operator would: opens the stream box's dialog, types `url` into the
// address field, clicks the dialog's surface (which finishes the edit and checks the address),
// saves a picture of the dialog to `file`, then confirms, or cancels a refused address.
void addStreamThroughTheDialog(demohost::DemoWindow& window, const QString& url,
                               const QString& file)
{
    auto* const box = boxOf<vexa::inputsource::StreamingBox>(window);
    if (box == nullptr) {
        return;
    }
    QTimer::singleShot(400, &window, [url, file] {
        auto* dialog =
            qobject_cast<vexa::inputsource::StreamingDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            return;
        }
        auto* const field = dialog->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"));
        QWidget* const editor = field->focusProxy();
        typeInto(field, url);
        clickSurface(dialog);
        dialog->grab().save(file);
        const bool refused = editor->property("style").toString() == QStringLiteral("editError");
        dialog
            ->findChild<vexa::widgets::PushButton*>(refused ? QStringLiteral("cancelBtn")
                                                            : QStringLiteral("confirmBtn"))
            ->click();
    });
    box->showDialog();
}

void save(const QPixmap& picture, const QString& path)
{
    if (!picture.save(path)) {
        QCoreApplication::exit(1);
    }
}

// The address field of the web dialog's tab row `row` (from 0), or null.
vexa::widgets::EditBox* tabAddressField(vexa::inputsource::WebDialog* dialog, int row)
{
    auto* const list = dialog->findChild<QListWidget*>(QStringLiteral("tabListWidget"));
    QWidget* const item =
        list == nullptr || row >= list->count() ? nullptr : list->itemWidget(list->item(row));
    return item == nullptr ? nullptr
                           : item->findChild<vexa::widgets::EditBox*>(QStringLiteral("tabUrlEdit"));
}

// Works the web dialog the box is about to open as an operator would: `change` fills it in,
// then a picture of it goes to `file`, and after `holdMs` OK confirms it.
void workWebDialog(vexa::inputsource::WebBox* box, const QString& file, int holdMs,
                   const std::function<void(vexa::inputsource::WebDialog*)>& change)
{
    QTimer::singleShot(400, box, [box, file, holdMs, change] {
        vexa::inputsource::WebDialog* const dialog = box->dialog();
        if (!dialog->isVisible()) {
            QCoreApplication::exit(1);
            return;
        }
        // Over the panel, so that the message centre stays in sight while the dialog is held.
        dialog->move(box->window()->mapToGlobal(QPoint(60, 180)));
        change(dialog);
        clickSurface(dialog);
        save(dialog->grab(), file);
        QTimer::singleShot(holdMs, dialog, [box, dialog] {
            dialog->findChild<vexa::widgets::PushButton*>(QStringLiteral("webOkBtn"))->click();
            // The web box is the panel's last: the window's picture shows what changed.
            if (auto* const panel =
                    box->window()->findChild<QScrollArea*>(QStringLiteral("inputSourcePanel"))) {
                panel->ensureWidgetVisible(box, 0, 0);
            }
        });
    });
}

// Adds a web page with three tabs through the web box's dialog: two tabs more than the one it
// proposes, the second with an address the dialog completes with "https://", the third a local
// file.
void addWebPageThroughTheDialog(demohost::DemoWindow& window, const QString& file, int holdMs)
{
    auto* const box = boxOf<vexa::inputsource::WebBox>(window);
    if (box == nullptr) {
        return;
    }
    workWebDialog(box, file, holdMs, [](vexa::inputsource::WebDialog* dialog) {
        auto* const addTab = dialog->findChild<QPushButton*>(QStringLiteral("addTabBtn"));
        addTab->click();
        addTab->click();
        QApplication::processEvents();
        if (auto* const second = tabAddressField(dialog, 1)) {
            typeInto(second, QStringLiteral("news.example.org/ticker"));
        }
        if (auto* const third = tabAddressField(dialog, 2)) {
            typeInto(third, QStringLiteral("file:///srv/overlays/clock.html"));
        }
    });
    box->showDialog(vexa::inputsource::WebBox::Add, 0);
}

// Edits the first web page through the web box's dialog: its first tab, the one shown, gets
// another address, which the page's tile then shows.
void editWebPageThroughTheDialog(demohost::DemoWindow& window, const QString& file, int holdMs)
{
    auto* const box = boxOf<vexa::inputsource::WebBox>(window);
    uint64_t first = 0;
    for (const auto& resource : window.manager()->getResources()) {
        if (resource->getType() == quandel::resource::EnResourceType::WebPage &&
            (first == 0 || resource->getId() < first)) {
            first = resource->getId();
        }
    }
    if (box == nullptr || first == 0) {
        return;
    }
    workWebDialog(box, file, holdMs, [](vexa::inputsource::WebDialog* dialog) {
        if (auto* const shown = tabAddressField(dialog, 0)) {
            typeInto(shown, QStringLiteral("courtside.example.org/live"));
        }
    });
    box->showDialog(vexa::inputsource::WebBox::Edit, first);
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
    const QCommandLineOption webDialog(
        QStringLiteral("web-dialog"),
        QStringLiteral("After a second, add a web page with three tabs through the dialog and save "
                       "a picture of the dialog to <file>."),
        QStringLiteral("file"));
    const QCommandLineOption webEdit(
        QStringLiteral("web-edit"),
        QStringLiteral("After a second, change the address of the first web page's first tab "
                       "through the dialog and save a picture of the dialog to <file>."),
        QStringLiteral("file"));
    const QCommandLineOption holdDialog(
        QStringLiteral("hold-dialog"),
        QStringLiteral("With --web-dialog or --web-edit: keep the dialog open <ms> milliseconds "
                       "after its picture before confirming it."),
        QStringLiteral("ms"), QStringLiteral("0"));
    const QCommandLineOption loadThreshold(
        QStringLiteral("load-threshold"),
        QStringLiteral("Warn of a CPU, GPU or memory use above <percent> (85 by default) that "
                       "lasts 30 seconds."),
        QStringLiteral("percent"));
    const QCommandLineOption screenshotAfter(
        QStringLiteral("screenshot-after"),
        QStringLiteral("With --screenshot: take the picture after <ms> milliseconds (2500 by "
                       "default)."),
        QStringLiteral("ms"), QStringLiteral("2500"));
    parser.addOption(webDialog);
    parser.addOption(webEdit);
    parser.addOption(holdDialog);
    parser.addOption(loadThreshold);
    parser.addOption(screenshotAfter);
    parser.process(app);
    app.setStyleSheet(vexa::widgets::defaultStyleSheet() +
                      demohost::ThemeLoader::styleSheet(demohost::ThemeLoader::themesDir()));

    demohost::DemoWindow window;
    window.resize(1100, 760);
    window.show();
    if (parser.isSet(language)) {
        window.switchLanguage(parser.value(language));
    }
    if (parser.isSet(loadThreshold)) {
        window.setLoadThreshold(parser.value(loadThreshold).toInt());
    }
    const int holdMs = parser.value(holdDialog).toInt();
    if (parser.isSet(webDialog)) {
        QTimer::singleShot(1000, &window, [&window, file = parser.value(webDialog), holdMs] {
            addWebPageThroughTheDialog(window, file, holdMs);
        });
    } else if (parser.isSet(webEdit)) {
        QTimer::singleShot(1000, &window, [&window, file = parser.value(webEdit), holdMs] {
            editWebPageThroughTheDialog(window, file, holdMs);
        });
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
        QTimer::singleShot(parser.value(screenshotAfter).toInt(), &window, [&window, path] {
            // With a dialog open, the picture shows the screen, as a person sees both.
            const QPixmap picture = QApplication::activeModalWidget() != nullptr
                                        ? QGuiApplication::primaryScreen()->grabWindow(0)
                                        : window.grab();
            QCoreApplication::exit(picture.save(path) ? 0 : 1);
        });
    }
    if (parser.isSet(quitAfter)) {
        QTimer::singleShot(parser.value(quitAfter).toInt(), &app, &QCoreApplication::quit);
    }
    return app.exec();
}
