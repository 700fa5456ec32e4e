#include "demowindow.h"
#include "themeloader.h"

#include <vexa/widgets/style.h>

#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTimer>

namespace {

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
    const QCommandLineOption ndi(
        QStringLiteral("ndi-dialog"),
        QStringLiteral(
            "With --screenshot <file>: open the NDI dialog and save three pictures of it "
            "as <file>-filling.png, <file>-halfchecked.png and <file>-refused.png."));
    const QCommandLineOption language(QStringLiteral("language"),
                                      QStringLiteral("Start in <code>: zh_CN, zh_TW or en_US."),
                                      QStringLiteral("code"));
    parser.addOption(screenshot);
    parser.addOption(quitAfter);
    parser.addOption(ndi);
    parser.addOption(language);
    parser.process(app);
    app.setStyleSheet(vexa::widgets::defaultStyleSheet() +
                      demohost::ThemeLoader::styleSheet(demohost::ThemeLoader::themesDir()));

    demohost::DemoWindow window;
    window.resize(1100, 760);
    window.show();

    if (parser.isSet(language)) {
        auto* const chooser = window.findChild<QComboBox*>(QStringLiteral("languageChooser"));
        const int index = chooser->findData(parser.value(language));
        if (index >= 0) {
            chooser->setCurrentIndex(index);
            Q_EMIT chooser->activated(index);
        }
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
