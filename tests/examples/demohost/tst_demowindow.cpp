#include "demowindow.h"
#include "diplaywind.h"
#include "simulatedinputsourcemgr.h"
#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/capturecardbox.h>
#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>

#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include <memory>
#include <string>

using demohost::DemoWindow;
using vexa::inputsource::DiplayWind;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;

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

QString titleOf(InputSourceBox* box)
{
    return box->findChild<QLabel*>(QStringLiteral("boxTitleLabel"))->text();
}

vexa::widgets::EditBox* nameEditorOf(InputSourceItem* tile)
{
    return tile->findChild<vexa::widgets::EditBox*>(QStringLiteral("nameEdit"));
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

QTEST_MAIN(TestDemoWindow)

#include "tst_demowindow.moc"
