// SPDX-License-Identifier: MIT
#include "demowindow.h"
#include "diplaywind.h"
#include "simulatedinputsourcemgr.h"
#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/capturecardbox.h>
#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/stweboperation.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/webbox.h>
#include <vexainputsourcewidget/webdialog.h>

#include <quandel/runtime/zqruntime.h>
#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

using demohost::DemoWindow;
using vexa::inputsource::DiplayWind;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;
using vexa::inputsource::STWebOperation;
using vexa::inputsource::WebBox;

namespace {

constexpr int captureKind = 8;
constexpr int streamKind = 13;
constexpr int ndiKind = 7;
constexpr int webKind = 9;
// Generous: the sanitizer builds run the real threads several times slower.
constexpr int patienceMs = 15000;

QString text(const char* key)
{
    return quandel::trans::translate(InputSourceTranslateManager::instance().translator(),
                                     "InputSource", "Widget", key);
}

// Adds a stream through the stream box's dialog as an operator does: keeps the proposed name,
// types `url`, clicks OK. Returns the proposed name.
QString addStreamThroughTheDialog(InputSourceBox* streams, const QString& url)
{
    QString proposed;
    vexa::testing::ModalAnswerer answerer;
    answerer.whenShown([&proposed, &url](QWidget* modal) {
        proposed = modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("nameEdit"))->text();
        QWidget* const editor =
            modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"))->focusProxy();
        QTest::mouseClick(editor, Qt::LeftButton);
        QTest::keyClicks(editor, url);
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("confirmBtn")),
                          Qt::LeftButton);
    });
    QTest::mouseClick(streams->findChild<QPushButton*>(QStringLiteral("boxAddButton")),
                      Qt::LeftButton);
    if (!answerer.answered()) {
        return QStringLiteral("no dialog: ") + answerer.errorString();
    }
    return proposed;
}

InputSourceBox* boxOf(const DemoWindow& window, int kind)
{
    for (InputSourceBox* box : window.boxes()) {
        if (quandel::resource::toCode(box->resourceType()) == kind) {
            return box;
        }
    }
    return nullptr;
}

uint64_t idOf(const DemoWindow& window, const std::string& name)
{
    for (const auto& resource : window.manager()->getResources()) {
        if (resource->getName() == name) {
            return resource->getId();
        }
    }
    return 0;
}

// The tile of the source called `name` in the box of `kind`, once it is there; null when it does
// not turn up in time.
InputSourceItem* tileOf(const DemoWindow& window, int kind, const std::string& name)
{
    InputSourceItem* tile = nullptr;
    const bool found = QTest::qWaitFor(
        [&] {
            tile = boxOf(window, kind)->findItem(idOf(window, name));
            return tile != nullptr;
        },
        patienceMs);
    return found ? tile : nullptr;
}

// The field `name` ("tabNameEdit", "tabUrlEdit") of the web dialog's tab row `row` (from 0).
vexa::widgets::EditBox* tabField(QWidget* dialog, int row, const char* name)
{
    auto* const list = dialog->findChild<QListWidget*>(QStringLiteral("tabListWidget"));
    QWidget* const item = row < list->count() ? list->itemWidget(list->item(row)) : nullptr;
    return item == nullptr ? nullptr
                           : item->findChild<vexa::widgets::EditBox*>(QLatin1String(name));
}

// Replaces a dialog field's text by typing and moves on with Tab, which ends the edit.
void enter(vexa::widgets::EditBox* field, const QString& text)
{
    auto* const editor = qobject_cast<QLineEdit*>(field->focusProxy());
    editor->setFocus(Qt::OtherFocusReason);
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_Backspace);
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Tab);
}

// The texts of the window's message list, oldest first.
QStringList messagesOf(const DemoWindow& window)
{
    QStringList texts;
    auto* const list = window.findChild<QListWidget*>(QStringLiteral("messageList"));
    for (int row = 0; row < list->count(); ++row) {
        texts << list->item(row)->text();
    }
    return texts;
}

// Whether a message containing `part` was shown, and where (-1 when not).
int messageIndex(const DemoWindow& window, const QString& part, int from = 0)
{
    const QStringList texts = messagesOf(window);
    for (int row = from; row < texts.size(); ++row) {
        if (texts[row].contains(part)) {
            return row;
        }
    }
    return -1;
}

// The web notifications of one code, as they arrived, and whether each came on the runtime
// thread.
class WebNotifications
{
public:
    struct Entry
    {
        STWebOperation operation;
        bool onRuntime;
        std::chrono::steady_clock::time_point at;
    };

    WebNotifications(demohost::SimulatedInputSourceMgr& mgr, quandel::IZQRuntime& runtime,
                     int32_t code)
        : m_connection(mgr.signalWebInfoChanged.connect(
              [this, &runtime, code](const STWebOperation& operation) {
                  if (operation.code != code) {
                      return;
                  }
                  std::lock_guard<std::mutex> lock(m_mutex);
                  m_entries.push_back(
                      {operation, runtime.isInRuntimeThread(), std::chrono::steady_clock::now()});
              }))
    {}

    std::vector<Entry> entries() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_entries;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries;
    sigslot::scoped_connection m_connection;
};

QString titleOf(InputSourceBox* box)
{
    return box->findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text();
}

vexa::widgets::EditBox* nameEditorOf(InputSourceItem* tile)
{
    return tile->findChild<vexa::widgets::EditBox*>(QStringLiteral("nameEdit"));
}

// A web tile's second line.
vexa::widgets::EditBox* addressOf(InputSourceItem* tile)
{
    return tile->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"));
}

// Types `name` into the tile's name editor as the operator would and presses Enter.
void rename(InputSourceItem* tile, const QString& name)
{
    vexa::widgets::EditBox* const editor = nameEditorOf(tile);
    editor->beginEdit();
    auto* const line = editor->findChild<QLineEdit*>(QStringLiteral("editor"));
    QTest::keyClicks(line, name);
    QTest::keyClick(line, Qt::Key_Return);
}

} // namespace

class TestDemoWindow : public QObject
{
    Q_OBJECT

private:
    // A shown window whose seeded sources all have their tiles, the previewed ones online.
    std::unique_ptr<DemoWindow> openWindow()
    {
        auto window = std::make_unique<DemoWindow>();
        window->resize(1100, 760);
        window->show();
        if (!QTest::qWaitForWindowExposed(window.get())) {
            return nullptr;
        }
        const bool ready = QTest::qWaitFor(
            [&] {
                for (const uint64_t id : window->manager()->previewedIds()) {
                    InputSourceItem* tile = nullptr;
                    for (InputSourceBox* box : window->boxes()) {
                        tile = tile != nullptr ? tile : box->findItem(id);
                    }
                    if (tile == nullptr || !tile->isOnline()) {
                        return false;
                    }
                }
                return window->manager()->previewedIds().size() == 4;
            },
            patienceMs);
        return ready ? std::move(window) : nullptr;
    }

private Q_SLOTS:
    void theBoxesShowTheSeededSources();
    void theAddButtonAddsAStream();
    void renamingInTheTileRenamesTheSource();
    void renamingToATakenNameKeepsTheOldName();
    void thePreviewButtonStartsLivePictures();
    void deletingASourceInUseAfterConfirmation();
    void aCancelledDeleteKeepsTheSource();
    void aLanguageSwitchRetitlesTheBoxesAndNamesNewStreams();
    void theWebBoxIsBoundAndTakesTheLanguageCode();
    void addingAWebPageWithThreeTabsCreatesATile();
    void editingAWebPageChangesItsTabsAndTheTilesAddress();
    void aDoubleClickReloadsThePage();
    void loadReadingsComeEverySecondOnTheRuntime();
    void aLowerThresholdIsSentAndTheLoadWarningAppears();
};

void TestDemoWindow::theBoxesShowTheSeededSources()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const std::vector<InputSourceBox*> boxes = window->boxes();
    QCOMPARE(boxes.size(), std::size_t(4));
    QCOMPARE(quandel::resource::toCode(boxes[0]->resourceType()), captureKind);
    QVERIFY(qobject_cast<vexa::inputsource::CaptureCardBox*>(boxes[0]) != nullptr);
    QVERIFY(qobject_cast<vexa::inputsource::StreamingBox*>(boxes[1]) != nullptr);
    QCOMPARE(quandel::resource::toCode(boxes[1]->resourceType()), streamKind);
    QCOMPARE(quandel::resource::toCode(boxes[2]->resourceType()), ndiKind);
    QCOMPARE(quandel::resource::toCode(boxes[3]->resourceType()), webKind);
    QTRY_COMPARE_WITH_TIMEOUT(boxes[0]->itemCount(), 2, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(boxes[1]->itemCount(), 3, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(boxes[2]->itemCount(), 2, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(boxes[3]->itemCount(), 2, patienceMs);

    QCOMPARE(titleOf(boxes[0]), text("CaptureCard"));
    QCOMPARE(titleOf(boxes[1]), text("Streaming"));
    QCOMPARE(titleOf(boxes[2]), QStringLiteral("NDI"));
    QCOMPARE(titleOf(boxes[3]), QStringLiteral("Web"));

    // Every source has its tile, in its own box, named as the manager names it.
    for (const auto& resource : window->manager()->getResources()) {
        InputSourceBox* const box = boxOf(*window, static_cast<int>(resource->getType()));
        InputSourceItem* const tile = box->findItem(resource->getId());
        QVERIFY(tile != nullptr);
        QCOMPARE(nameEditorOf(tile)->text(), QString::fromStdString(resource->getName()));
    }
    // The unreachable stream stays offline; the previewed sources show their preview on.
    InputSourceItem* const backup =
        boxOf(*window, streamKind)->findItem(idOf(*window, "Backup Feed"));
    QTest::qWait(300);
    QVERIFY(!backup->isOnline());
    for (const uint64_t id : window->manager()->previewedIds()) {
        for (InputSourceBox* box : boxes) {
            if (InputSourceItem* const tile = box->findItem(id)) {
                QTRY_VERIFY_WITH_TIMEOUT(!tile->isPreviewChecked(), patienceMs);
            }
        }
    }
}

void TestDemoWindow::theAddButtonAddsAStream()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    InputSourceBox* const streams = boxOf(*window, streamKind);
    QTRY_COMPARE_WITH_TIMEOUT(streams->itemCount(), 3, patienceMs);

    // The dialog proposes a name in the operator's language, with the smallest free number.
    const QString proposed =
        addStreamThroughTheDialog(streams, QStringLiteral("rtsp://10.0.0.9/a"));
    QCOMPARE(proposed, text("Streaming") + QStringLiteral(" 1"));
    QTRY_COMPARE_WITH_TIMEOUT(streams->itemCount(), 4, patienceMs);

    const std::string name = proposed.toStdString();
    const uint64_t id = idOf(*window, name);
    QVERIFY2(id != 0, name.c_str());
    InputSourceItem* const tile = streams->findItem(id);
    QVERIFY(tile != nullptr);
    QCOMPARE(nameEditorOf(tile)->text(), QString::fromStdString(name));
    QTRY_VERIFY_WITH_TIMEOUT(tile->isOnline(), patienceMs);
}

void TestDemoWindow::renamingInTheTileRenamesTheSource()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const uint64_t id = idOf(*window, "Stage Cam");
    InputSourceItem* const tile = tileOf(*window, streamKind, "Stage Cam");
    QVERIFY(tile != nullptr);

    rename(tile, QStringLiteral("Main Stage"));
    QTRY_COMPARE_WITH_TIMEOUT(window->manager()->getResourceById(id)->getName(),
                              std::string("Main Stage"), patienceMs);
    QCOMPARE(window->manager()->getResourceById(id)->getMeta()->getName(),
             std::string("Main Stage"));
    QTRY_COMPARE_WITH_TIMEOUT(nameEditorOf(tile)->text(), QStringLiteral("Main Stage"), patienceMs);
}

void TestDemoWindow::renamingToATakenNameKeepsTheOldName()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const uint64_t id = idOf(*window, "Stage Cam");
    InputSourceItem* const tile = tileOf(*window, streamKind, "Stage Cam");
    QVERIFY(tile != nullptr);

    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    rename(tile, QStringLiteral("Studio Feed"));
    QTRY_VERIFY_WITH_TIMEOUT(!answerer.isWaiting(), patienceMs);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(answerer.labelTexts().contains(text("NameAlreadyExists")));

    QCOMPARE(window->manager()->getResourceById(id)->getName(), std::string("Stage Cam"));
    QTRY_COMPARE_WITH_TIMEOUT(nameEditorOf(tile)->text(), QStringLiteral("Stage Cam"), patienceMs);
}

void TestDemoWindow::thePreviewButtonStartsLivePictures()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const uint64_t id = idOf(*window, "Stage Cam");
    InputSourceItem* const tile = tileOf(*window, streamKind, "Stage Cam");
    QVERIFY(tile != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(tile->isOnline(), patienceMs);
    QVERIFY(tile->isPreviewChecked());
    QVERIFY(!window->manager()->isInUse(id));
    QCOMPARE(window->manager()->deliveredFrames(id), uint64_t(0));

    auto* const toggle = tile->findChild<QPushButton*>(QStringLiteral("previewBtn"));
    QVERIFY(toggle != nullptr);
    QTest::mouseClick(toggle, Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(window->manager()->isInUse(id), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(!tile->isPreviewChecked(), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(window->manager()->deliveredFrames(id) > 10, patienceMs);

    // The frames set the stream's rate on its third line, after the size the manager reported.
    auto* const info = tile->findChild<QLabel*>(QStringLiteral("infoLabel"));
    QTRY_COMPARE_WITH_TIMEOUT(info->text(), QStringLiteral("1920*1080@25fps"), patienceMs);

    // The surface shows a picture that moves.
    auto* const surface = tile->findChild<DiplayWind*>();
    QVERIFY(surface != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(surface->isVisible(), patienceMs);
    const QImage before = surface->grab().toImage();
    QTRY_VERIFY_WITH_TIMEOUT(surface->grab().toImage() != before, patienceMs);
}

void TestDemoWindow::deletingASourceInUseAfterConfirmation()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const uint64_t id = idOf(*window, "Studio Feed");
    InputSourceBox* const streams = boxOf(*window, streamKind);
    InputSourceItem* const tile = tileOf(*window, streamKind, "Studio Feed");
    QVERIFY(tile != nullptr);
    QVERIFY(window->manager()->isInUse(id));

    QTest::mouseClick(tile, Qt::LeftButton, Qt::NoModifier, QPoint(tile->width() / 2, 40));
    QCOMPARE(streams->selectedIds(), std::vector<uint64_t>{id});

    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.clickWhenShown(QStringLiteral("firstBtn"));
    QTest::keyClick(streams, Qt::Key_Delete);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));

    QTRY_VERIFY_WITH_TIMEOUT(streams->findItem(id) == nullptr, patienceMs);
    QCOMPARE(streams->itemCount(), 2);
    QVERIFY(window->manager()->getResourceById(id) == nullptr);
}

void TestDemoWindow::aCancelledDeleteKeepsTheSource()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const uint64_t id = idOf(*window, "CAM-NORTH");
    InputSourceBox* const senders = boxOf(*window, ndiKind);
    InputSourceItem* const tile = tileOf(*window, ndiKind, "CAM-NORTH");
    QVERIFY(tile != nullptr);
    QVERIFY(window->manager()->isInUse(id));

    QTest::mouseClick(tile, Qt::LeftButton, Qt::NoModifier, QPoint(tile->width() / 2, 40));
    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.clickWhenShown(QStringLiteral("secondBtn"));
    QTest::keyClick(senders, Qt::Key_Delete);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));

    QTest::qWait(500);
    QVERIFY(senders->findItem(id) == tile);
    QCOMPARE(senders->itemCount(), 2);
    QVERIFY(window->manager()->getResourceById(id) != nullptr);
}

void TestDemoWindow::aLanguageSwitchRetitlesTheBoxesAndNamesNewStreams()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    auto* const chooser =
        window->findChild<vexa::widgets::ComboBox*>(QStringLiteral("languageChooser"));
    QVERIFY(chooser != nullptr);
    const int english = chooser->findData(QStringLiteral("en_US"));
    QVERIFY(english >= 0);
    Q_EMIT chooser->activated(english);

    QCOMPARE(titleOf(boxOf(*window, captureKind)), QStringLiteral("Capture Card"));
    QCOMPARE(titleOf(boxOf(*window, streamKind)), QStringLiteral("Stream"));
    QCOMPARE(titleOf(boxOf(*window, ndiKind)), QStringLiteral("NDI"));

    InputSourceBox* const streams = boxOf(*window, streamKind);
    QTRY_COMPARE_WITH_TIMEOUT(streams->itemCount(), 3, patienceMs);
    // The new word reaches the manager through the runtime; the dialog asks it directly.
    QTRY_COMPARE_WITH_TIMEOUT(window->manager()->generateStreamingName(), std::string("Stream 1"),
                              patienceMs);
    QCOMPARE(addStreamThroughTheDialog(streams, QStringLiteral("rtmp://10.0.0.9/live")),
             QStringLiteral("Stream 1"));
    QTRY_COMPARE_WITH_TIMEOUT(streams->itemCount(), 4, patienceMs);
    QVERIFY(idOf(*window, "Stream 1") != 0);
}

void TestDemoWindow::theWebBoxIsBoundAndTakesTheLanguageCode()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    auto* const pages = qobject_cast<WebBox*>(boxOf(*window, webKind));
    QVERIFY(pages != nullptr);
    QCOMPARE(pages->languageCode(), QStringLiteral("zh_CN"));
    QCOMPARE(pages->dialog()->languageCode(), QStringLiteral("zh_CN"));
    QVERIFY(pages->inputSourceMgr().lock() == window->manager());
    // Bound like the other boxes: the web tiles arrive from the manager's notifications.
    QTRY_COMPARE_WITH_TIMEOUT(pages->itemCount(), 2, patienceMs);

    for (const QString& code :
         {QStringLiteral("en_US"), QStringLiteral("zh_TW"), QStringLiteral("zh_CN")}) {
        window->switchLanguage(code);
        QCOMPARE(pages->languageCode(), code);
        QCOMPARE(pages->dialog()->languageCode(), code);
        // The dialog is translated with the box.
        QCOMPARE(pages->dialog()->findChild<QLabel*>(QStringLiteral("webNameLabel"))->text(),
                 text("WebResourceName"));
    }
}

void TestDemoWindow::addingAWebPageWithThreeTabsCreatesATile()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    auto* const pages = qobject_cast<WebBox*>(boxOf(*window, webKind));
    QTRY_COMPARE_WITH_TIMEOUT(pages->itemCount(), 2, patienceMs);

    QString proposed;
    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.whenShown([&proposed](QWidget* modal) {
        QApplication::setActiveWindow(modal);
        proposed = modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("webNameEdit"))->text();
        auto* const addTab = modal->findChild<QPushButton*>(QStringLiteral("addTabBtn"));
        QTest::mouseClick(addTab, Qt::LeftButton);
        QTest::mouseClick(addTab, Qt::LeftButton);
        enter(tabField(modal, 1, "tabNameEdit"), QStringLiteral("Ticker"));
        enter(tabField(modal, 2, "tabUrlEdit"), QStringLiteral("news.example.org/ticker"));
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("webOkBtn")),
                          Qt::LeftButton);
    });
    QTest::mouseClick(pages->findChild<QPushButton*>(QStringLiteral("boxAddButton")),
                      Qt::LeftButton);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::inputsource::WebDialog"));
    QCOMPARE(proposed, text("WebPage") + QStringLiteral("1"));

    InputSourceItem* const tile = tileOf(*window, webKind, proposed.toStdString());
    QVERIFY(tile != nullptr);
    QCOMPARE(pages->itemCount(), 3);
    const auto meta = window->manager()->getResourceById(tile->id())->getMeta();
    const auto tabs = meta->getWebTabs();
    QCOMPARE(tabs.size(), std::size_t(3));
    // The proposed tab shows the home page of the language the window started in.
    const std::string home = pages->dialog()->homePageFor(QStringLiteral("zh_CN")).toStdString();
    QCOMPARE(tabs[0].name, QString(text("WebTab") + QLatin1Char('1')).toStdString());
    QCOMPARE(tabs[0].url, home);
    QCOMPARE(tabs[1].name, std::string("Ticker"));
    QCOMPARE(tabs[2].url, std::string("https://news.example.org/ticker"));
    QCOMPARE(meta->getWebCurrentTabIndex(), 1);
    QCOMPARE(meta->getAddress(), home);
    QCOMPARE(addressOf(tile)->text(), QString::fromStdString(home));
    QTRY_VERIFY_WITH_TIMEOUT(tile->isOnline(), patienceMs);
}

void TestDemoWindow::editingAWebPageChangesItsTabsAndTheTilesAddress()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const uint64_t id = idOf(*window, "Scoreboard");
    InputSourceItem* const tile = tileOf(*window, webKind, "Scoreboard");
    QVERIFY(tile != nullptr);

    QStringList shown;
    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.whenShown([&shown](QWidget* modal) {
        QApplication::setActiveWindow(modal);
        // The page's own description: its name and both tabs.
        shown << modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("webNameEdit"))->text();
        for (int row = 0; tabField(modal, row, "tabUrlEdit") != nullptr; ++row) {
            shown << tabField(modal, row, "tabNameEdit")->text()
                  << tabField(modal, row, "tabUrlEdit")->text();
        }
        enter(modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("webNameEdit")),
              QStringLiteral("Final Scores"));
        enter(tabField(modal, 0, "tabUrlEdit"), QStringLiteral("scores.example.org/final"));
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("webOkBtn")),
                          Qt::LeftButton);
    });
    // "Edit" in the tile's menu.
    Q_EMIT tile->signalEdit(id);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    const QStringList expected = {QStringLiteral("Scoreboard"), QStringLiteral("Live"),
                                  QStringLiteral("https://scores.example.org/live"),
                                  QStringLiteral("Standings"),
                                  QStringLiteral("https://scores.example.org/standings")};
    QCOMPARE(shown, expected);

    const auto resource = window->manager()->getResourceById(id);
    QCOMPARE(resource->getName(), std::string("Final Scores"));
    const auto tabs = resource->getMeta()->getWebTabs();
    QCOMPARE(tabs.size(), std::size_t(2));
    QCOMPARE(tabs[0].url, std::string("https://scores.example.org/final"));
    QCOMPARE(tabs[1].url, std::string("https://scores.example.org/standings"));
    QCOMPARE(resource->getMeta()->getAddress(), std::string("https://scores.example.org/final"));

    // The tile follows: the shown tab's address on its second line, and the new name.
    QTRY_COMPARE_WITH_TIMEOUT(addressOf(tile)->text(),
                              QStringLiteral("https://scores.example.org/final"), patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(nameEditorOf(tile)->text(), QStringLiteral("Final Scores"),
                              patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(
        messageIndex(*window,
                     QStringLiteral("Final Scores shows https://scores.example.org/final")) >= 0,
        patienceMs);
}

void TestDemoWindow::aDoubleClickReloadsThePage()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    const uint64_t id = idOf(*window, "Scoreboard");
    InputSourceItem* const tile = tileOf(*window, webKind, "Scoreboard");
    QVERIFY(tile != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(tile->isOnline(), patienceMs);

    QTest::mouseDClick(tile, Qt::LeftButton);
    const QString reloading =
        QStringLiteral("Reloading Scoreboard: https://scores.example.org/live");
    QTRY_VERIFY_WITH_TIMEOUT(messageIndex(*window, reloading) >= 0, patienceMs);
    // The page loads again: offline for a moment, then online, with its tabs as they were.
    const int reloaded = messageIndex(*window, reloading);
    QTRY_VERIFY_WITH_TIMEOUT(
        messageIndex(*window, QStringLiteral("Scoreboard is offline."), reloaded) > reloaded,
        patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(
        messageIndex(*window, QStringLiteral("Scoreboard is online."), reloaded) > reloaded,
        patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(tile->isOnline(), patienceMs);
    QVERIFY(window->manager()->isInUse(id));
    QCOMPARE(window->manager()->getResourceById(id)->getMeta()->getWebTabs().size(),
             std::size_t(2));
}

void TestDemoWindow::loadReadingsComeEverySecondOnTheRuntime()
{
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    WebNotifications readings(*window->manager(), window->runtime(), STWebOperation::LoadReadings);
    QTRY_VERIFY_WITH_TIMEOUT(readings.entries().size() >= 3, patienceMs);
    const auto entries = readings.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        QVERIFY(entries[i].onRuntime);
        QCOMPARE(entries[i].operation.kind, 1);
        const auto [cpu, gpu, memory] = entries[i].operation.loadReadings;
        QVERIFY2(cpu == -1.0 || (cpu >= 0.0 && cpu <= 100.0), qPrintable(QString::number(cpu)));
        QCOMPARE(gpu, -1.0);
        QVERIFY2(memory == -1.0 || (memory >= 0.0 && memory <= 100.0),
                 qPrintable(QString::number(memory)));
        if (i > 0) {
            const auto gap = std::chrono::duration_cast<std::chrono::milliseconds>(
                entries[i].at - entries[i - 1].at);
            QVERIFY2(gap.count() >= 900, qPrintable(QString::number(gap.count())));
        }
    }
}

void TestDemoWindow::aLowerThresholdIsSentAndTheLoadWarningAppears()
{
#ifndef Q_OS_LINUX
    QSKIP("the memory use is read from /proc");
#endif
    const auto window = openWindow();
    QVERIFY(window != nullptr);
    auto* const pages = qobject_cast<WebBox*>(boxOf(*window, webKind));
    WebNotifications thresholds(*window->manager(), window->runtime(),
                                STWebOperation::LoadThresholds);
    // Six samples above the threshold in a fraction of a second rather than 30.
    auto* const watch = pages->dialog()->findChild<QTimer*>(QStringLiteral("loadWatchTimer"));
    QVERIFY(watch != nullptr);
    QCOMPARE(watch->interval(), 5000);
    watch->setInterval(50);

    auto* const chooser =
        window->findChild<vexa::widgets::ComboBox*>(QStringLiteral("loadThresholdChooser"));
    QVERIFY(chooser != nullptr);
    QCOMPARE(chooser->currentData().toInt(), 85);
    auto* const label = window->findChild<QLabel*>(QStringLiteral("loadThresholdLabel"));
    QVERIFY(!label->text().isEmpty());
    QVERIFY(label->text() != QStringLiteral("LoadWarningAbove"));
    const int lowest = chooser->findData(1);
    QVERIFY(lowest >= 0);
    Q_EMIT chooser->activated(lowest);

    // The thresholds the window started with may still be on their way: the last one counts.
    const std::array<int32_t, 3> lowered{{1, 1, 1}};
    QTRY_VERIFY_WITH_TIMEOUT(!thresholds.entries().empty() &&
                                 thresholds.entries().back().operation.loadThresholds == lowered,
                             patienceMs);
    for (const auto& sent : thresholds.entries()) {
        QVERIFY(sent.onRuntime);
    }
    QCOMPARE(window->manager()->loadThresholds(), (std::array<int32_t, 3>{{1, 1, 1}}));

    // Any machine running this uses more than 1 % of its memory.
    const QString warning =
        text("MemoryExceedsTheThreshold").arg(QStringLiteral("30"), QStringLiteral("85%"));
    QTRY_VERIFY_WITH_TIMEOUT(messageIndex(*window, warning) >= 0, patienceMs);

    // A figure the chooser does not offer is added in its place.
    window->setLoadThreshold(30);
    QCOMPARE(chooser->currentData().toInt(), 30);
    QCOMPARE(chooser->itemData(chooser->currentIndex() - 1).toInt(), 50);
    QCOMPARE(chooser->itemData(chooser->currentIndex() + 1).toInt(), 10);
    QTRY_COMPARE_WITH_TIMEOUT(thresholds.entries().back().operation.loadThresholds,
                              (std::array<int32_t, 3>{{30, 30, 30}}), patienceMs);
}

QTEST_MAIN(TestDemoWindow)

#include "tst_demowindow.moc"
