// One operator's session with the demo host, step after step on one window, through the real
// runtime thread and the manager's real frame thread: sources added through the panel's menu and
// dialogs, a page edited, a preview started, a tile dragged onto the program monitor, sources
// deleted and cleared, and every text checked in the three languages.
#include "demowindow.h"
#include "diplaywind.h"
#include "programmonitor.h"
#include "simulatedinputsourcemgr.h"

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourceitem.h>
#include <vexainputsourcewidget/inputsourcetranslatemanager.h>
#include <vexainputsourcewidget/inputsourcewidget.h>
#include <vexainputsourcewidget/ndibox.h>
#include <vexainputsourcewidget/streamingbox.h>
#include <vexainputsourcewidget/testing/modalanswerer.h>
#include <vexainputsourcewidget/webbox.h>

#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QDockWidget>
#include <QDrag>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>
#include <QXmlStreamReader>
#include <QtTest>

#include <map>
#include <memory>
#include <string>

using demohost::DemoWindow;
using demohost::ProgramMonitor;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;

namespace {

constexpr int captureKind = 8;
constexpr int streamKind = 13;
constexpr int ndiKind = 7;
constexpr int webKind = 9;
// Generous: the sanitizer builds run the real threads several times slower.
constexpr int patienceMs = 15000;

// The panel's menu, top to bottom.
enum MenuRow
{
    AddStream,
    AddNdi,
    AddWeb,
    ClearAll
};

QString text(const char* key)
{
    return quandel::trans::translate(InputSourceTranslateManager::instance().translator(),
                                     "InputSource", "Widget", key);
}

// Every key of the language files of `code`, the library's and the window's, with its
// translation.
std::map<QString, QString> keysOf(const QString& code)
{
    std::map<QString, QString> keys;
    const QStringList files = {
        QStringLiteral(VEXA_SOURCE_DIR "/translations/vexainputsourcewidget_%1.ts").arg(code),
        QStringLiteral(VEXA_SOURCE_DIR "/examples/demohost/translations/demohost_%1.ts").arg(code)};
    for (const QString& path : files) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        QXmlStreamReader reader(&file);
        QString source;
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement) {
                continue;
            }
            if (reader.name() == QLatin1String("source")) {
                source = reader.readElementText();
            } else if (reader.name() == QLatin1String("translation")) {
                keys[source] = reader.readElementText();
            }
        }
    }
    return keys;
}

// The texts an operator may see in `root` and its shown children: labels, buttons, editors,
// choosers, window titles, tool-tips, accessible names, and every entry of its menus.
// Each text comes with where it was seen ("class objectName"), for the failure message.
QStringList textsOf(QWidget* root)
{
    QStringList texts;
    const QObject* at = root;
    const auto add = [&texts, &at](const QString& words) {
        if (!words.isEmpty()) {
            texts << words + QLatin1Char('\t') + QLatin1String(at->metaObject()->className()) +
                         QLatin1Char(' ') + at->objectName();
        }
    };
    QList<QWidget*> widgets = root->findChildren<QWidget*>();
    widgets.prepend(root);
    for (QWidget* widget : widgets) {
        if (widget != root && !widget->isVisibleTo(root)) {
            continue;
        }
        at = widget;
        add(widget->windowTitle());
        // The widget kit's dialog frame names its close button with the kit's own English
        // tool-tip (Qt's tr(), which no host translation reaches); it is no lookup of a key.
        if (widget->objectName() != QLatin1String("closeBtn")) {
            add(widget->toolTip());
        }
        add(widget->accessibleName());
        if (auto* const label = qobject_cast<QLabel*>(widget)) {
            add(label->text());
        } else if (auto* const button = qobject_cast<QAbstractButton*>(widget)) {
            add(button->text());
        } else if (auto* const line = qobject_cast<QLineEdit*>(widget)) {
            add(line->text());
            add(line->placeholderText());
        } else if (auto* const chooser = qobject_cast<QComboBox*>(widget)) {
            for (int index = 0; index < chooser->count(); ++index) {
                add(chooser->itemText(index));
            }
        }
    }
    for (QMenu* menu : root->findChildren<QMenu*>()) {
        at = menu;
        add(menu->title());
        for (QAction* action : menu->actions()) {
            add(action->text());
        }
    }
    return texts;
}

// The texts among `texts` that are keys the current language translates to something else.
QStringList rawKeys(const QStringList& texts, const std::map<QString, QString>& keys)
{
    QStringList raw;
    for (const QString& seen : texts) {
        const QString words = seen.section(QLatin1Char('\t'), 0, 0);
        const auto found = keys.find(words);
        if (found != keys.end() && found->second != found->first && !raw.contains(seen)) {
            raw << seen;
        }
    }
    return raw;
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

int countOf(const DemoWindow& window, int kind)
{
    int count = 0;
    for (const auto& resource : window.manager()->getResources()) {
        count += static_cast<int>(resource->getType()) == kind ? 1 : 0;
    }
    return count;
}

// The field `name` of the web dialog's tab row `row` (from 0).
vexa::widgets::EditBox* tabField(QWidget* dialog, int row, const char* name)
{
    auto* const list = dialog->findChild<QListWidget*>(QStringLiteral("tabListWidget"));
    QWidget* const item = row < list->count() ? list->itemWidget(list->item(row)) : nullptr;
    return item == nullptr ? nullptr
                           : item->findChild<vexa::widgets::EditBox*>(QLatin1String(name));
}

// Replaces a dialog field's text by typing and moves on with Tab, which ends the edit.
void enter(vexa::widgets::EditBox* field, const QString& words)
{
    auto* const editor = qobject_cast<QLineEdit*>(field->focusProxy());
    editor->setFocus(Qt::OtherFocusReason);
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_Backspace);
    QTest::keyClicks(editor, words);
    QTest::keyClick(editor, Qt::Key_Tab);
}

// Catches the drag a tile starts and keeps a copy of what it carries: the offscreen platform
// ends a drag at once without dropping anywhere, so the test hands the payload to the drop
// target itself, as the windowing system would.
class DragCatcher : public QObject
{
public:
    explicit DragCatcher(QWidget* tile) { tile->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::ChildAdded) {
            // Still under construction: what it is shows only later.
            QObject* const child = static_cast<QChildEvent*>(event)->child();
            m_children.append(child);
            child->installEventFilter(this);
        } else if (event->type() == QEvent::DeferredDelete) {
            take(qobject_cast<QDrag*>(watched));
        }
        return false;
    }

    // What the drag carried; taken from the drag when it is still there.
    QMimeData* payload()
    {
        for (const QPointer<QObject>& child : m_children) {
            take(qobject_cast<QDrag*>(child.data()));
        }
        return m_payload.get();
    }

private:
    void take(QDrag* drag)
    {
        if (drag == nullptr || drag->mimeData() == nullptr || m_payload != nullptr) {
            return;
        }
        m_payload = std::make_unique<QMimeData>();
        for (const QString& format : drag->mimeData()->formats()) {
            m_payload->setData(format, drag->mimeData()->data(format));
        }
    }

    QList<QPointer<QObject>> m_children;
    std::unique_ptr<QMimeData> m_payload;
};

} // namespace

class TestDemoHostScenario : public QObject
{
    Q_OBJECT

private:
    InputSourceBox* box(int kind) const
    {
        for (InputSourceBox* candidate : m_window->boxes()) {
            if (quandel::resource::toCode(candidate->resourceType()) == kind) {
                return candidate;
            }
        }
        return nullptr;
    }

    InputSourceItem* tile(int kind, const std::string& name) const
    {
        InputSourceItem* found = nullptr;
        (void)QTest::qWaitFor(
            [&] {
                found = box(kind)->findItem(idOf(*m_window, name));
                return found != nullptr;
            },
            patienceMs);
        return found;
    }

    // Opens the panel's menu from the keyboard's menu key and chooses `row` with the arrow keys
    // and Enter; returns the menu's texts as shown.
    QStringList choose(MenuRow row)
    {
        QStringList shown;
        QTimer::singleShot(100, this, [&shown, row] {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr) {
                return;
            }
            for (QAction* action : menu->actions()) {
                shown << action->text();
            }
            for (int step = 0; step <= row; ++step) {
                QTest::keyClick(menu, Qt::Key_Down);
            }
            QTest::keyClick(menu, Qt::Key_Return);
        });
        vexa::inputsource::InputSourceWidget* const panel = m_window->panel();
        const QPoint centre = panel->rect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, centre, panel->mapToGlobal(centre));
        QApplication::sendEvent(panel, &event);
        return shown;
    }

    // Clicks the tile as the operator selects it.
    static void select(InputSourceItem* item)
    {
        QTest::mouseClick(item, Qt::LeftButton, Qt::NoModifier, QPoint(item->width() / 2, 40));
    }

    std::unique_ptr<DemoWindow> m_window;
    uint64_t m_streamId = 0;
    QString m_streamName;

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void addAStreamFromThePanelMenu();
    void addTwoNdiSendersThroughTheirDialog();
    void addAWebPageWithThreeTabs();
    void editTheWebPageFromItsTile();
    void previewTheNewStream();
    void dragTheStreamOntoTheProgramMonitor();
    void putASourceOnProgramFromTheKeyboard();
    void noVisibleTextIsARawKeyInAnyLanguage();
    void deleteASourceInUseAndOneNotInUse();
    void clearAllWithoutAndWithTheCheckBox();
    void theWindowIsUsableFromTheKeyboard();
    void closingTheWindowWhileAQuestionIsOpen();
};

void TestDemoHostScenario::initTestCase()
{
    m_window = std::make_unique<DemoWindow>();
    m_window->resize(1500, 900);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QApplication::setActiveWindow(m_window.get());
    // The panel sits in a floatable dock titled from the panel; the monitor is the centre.
    auto* const dock = m_window->findChild<QDockWidget*>(QStringLiteral("inputSourceDock"));
    QVERIFY(dock != nullptr);
    QCOMPARE(dock->widget(), m_window->panel());
    QVERIFY(dock->features().testFlag(QDockWidget::DockWidgetFloatable));
    QCOMPARE(dock->windowTitle(), text("InputSource"));
    QCOMPARE(m_window->centralWidget(), m_window->programMonitor());
    QTRY_COMPARE_WITH_TIMEOUT(box(streamKind)->itemCount(), 3, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(box(ndiKind)->itemCount(), 2, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(box(webKind)->itemCount(), 2, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(box(captureKind)->itemCount(), 2, patienceMs);
}

void TestDemoHostScenario::cleanupTestCase()
{
    m_window.reset();
}

void TestDemoHostScenario::addAStreamFromThePanelMenu()
{
    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.whenShown([this](QWidget* modal) {
        m_streamName =
            modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("nameEdit"))->text();
        QWidget* const editor =
            modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("urlEdit"))->focusProxy();
        QTest::mouseClick(editor, Qt::LeftButton);
        QTest::keyClicks(editor, QStringLiteral("rtsp://10.0.0.9/program"));
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("confirmBtn")),
                          Qt::LeftButton);
    });
    const QStringList menu = choose(AddStream);
    QCOMPARE(menu, (QStringList{text("AddStreaming"), text("AddNdiMedia"), text("AddWebMedia"),
                                text("ClearInputSource")}));
    QTRY_VERIFY_WITH_TIMEOUT(!answerer.isWaiting(), patienceMs);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::inputsource::StreamingDialog"));
    QCOMPARE(m_streamName, text("Streaming") + QStringLiteral(" 1"));

    QTRY_COMPARE_WITH_TIMEOUT(box(streamKind)->itemCount(), 4, patienceMs);
    m_streamId = idOf(*m_window, m_streamName.toStdString());
    QVERIFY(m_streamId != 0);
    QTRY_VERIFY_WITH_TIMEOUT(box(streamKind)->findItem(m_streamId)->isOnline(), patienceMs);
}

void TestDemoHostScenario::addTwoNdiSendersThroughTheirDialog()
{
    QStringList ticked;
    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.whenShown([&ticked](QWidget* modal) {
        auto* const list = modal->findChild<QListWidget*>(QStringLiteral("ndiList"));
        // Discovery answers in steps over about a second.
        (void)QTest::qWaitFor([list] { return list->count() >= 5; }, patienceMs);
        for (int row = 0; row < list->count() && ticked.size() < 2; ++row) {
            QWidget* const item = list->itemWidget(list->item(row));
            auto* const check = item->findChild<QPushButton*>(QStringLiteral("ndiCheckBtn"));
            if (check->isEnabled()) {
                QTest::mouseClick(check, Qt::LeftButton);
                ticked << item->findChild<QLabel*>(QStringLiteral("ndiSenderLabel"))->text();
            }
        }
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("ndiConfirmBtn")),
                          Qt::LeftButton);
    });
    choose(AddNdi);
    QTRY_VERIFY_WITH_TIMEOUT(!answerer.isWaiting(), patienceMs);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(ticked.size(), 2);
    QTRY_COMPARE_WITH_TIMEOUT(countOf(*m_window, ndiKind), 4, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(box(ndiKind)->itemCount(), 4, patienceMs);
}

void TestDemoHostScenario::addAWebPageWithThreeTabs()
{
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
        enter(tabField(modal, 1, "tabUrlEdit"), QStringLiteral("news.example.org/ticker"));
        enter(tabField(modal, 2, "tabUrlEdit"), QStringLiteral("file:///srv/overlays/clock.html"));
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("webOkBtn")),
                          Qt::LeftButton);
    });
    choose(AddWeb);
    QTRY_VERIFY_WITH_TIMEOUT(!answerer.isWaiting(), patienceMs);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(answerer.modalClassName(), QStringLiteral("vexa::inputsource::WebDialog"));

    InputSourceItem* const page = tile(webKind, proposed.toStdString());
    QVERIFY(page != nullptr);
    QCOMPARE(box(webKind)->itemCount(), 3);
    const auto tabs = m_window->manager()->getResourceById(page->id())->getMeta()->getWebTabs();
    QCOMPARE(tabs.size(), std::size_t(3));
    QCOMPARE(tabs[1].name, std::string("Ticker"));
    QCOMPARE(tabs[1].url, std::string("https://news.example.org/ticker"));
    QCOMPARE(tabs[2].url, std::string("file:///srv/overlays/clock.html"));
}

void TestDemoHostScenario::editTheWebPageFromItsTile()
{
    const uint64_t id = idOf(*m_window, "Scoreboard");
    InputSourceItem* const page = tile(webKind, "Scoreboard");
    QVERIFY(page != nullptr);
    QAction* edit = nullptr;
    for (QMenu* menu : page->findChildren<QMenu*>()) {
        for (QAction* action : menu->actions()) {
            edit = action->text() == text("Edit") ? action : edit;
        }
    }
    QVERIFY(edit != nullptr);

    QStringList shown;
    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.whenShown([&shown](QWidget* modal) {
        QApplication::setActiveWindow(modal);
        shown << modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("webNameEdit"))->text()
              << tabField(modal, 0, "tabUrlEdit")->text();
        enter(modal->findChild<vexa::widgets::EditBox*>(QStringLiteral("webNameEdit")),
              QStringLiteral("Final Scores"));
        enter(tabField(modal, 0, "tabUrlEdit"), QStringLiteral("scores.example.org/final"));
        QTest::mouseClick(modal->findChild<QPushButton*>(QStringLiteral("webOkBtn")),
                          Qt::LeftButton);
    });
    edit->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(!answerer.isWaiting(), patienceMs);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QCOMPARE(shown, (QStringList{QStringLiteral("Scoreboard"),
                                 QStringLiteral("https://scores.example.org/live")}));
    QTRY_COMPARE_WITH_TIMEOUT(m_window->manager()->getResourceById(id)->getName(),
                              std::string("Final Scores"), patienceMs);
    QCOMPARE(m_window->manager()->getResourceById(id)->getMeta()->getAddress(),
             std::string("https://scores.example.org/final"));
}

void TestDemoHostScenario::previewTheNewStream()
{
    InputSourceItem* const stream = box(streamKind)->findItem(m_streamId);
    QVERIFY(stream != nullptr);
    QVERIFY(!m_window->manager()->isInUse(m_streamId));
    QCOMPARE(m_window->manager()->deliveredFrames(m_streamId), uint64_t(0));
    QTest::mouseClick(stream->findChild<QPushButton*>(QStringLiteral("previewBtn")),
                      Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(m_window->manager()->isInUse(m_streamId), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(m_window->manager()->deliveredFrames(m_streamId) > 10, patienceMs);
    auto* const surface = stream->findChild<vexa::inputsource::DiplayWind*>();
    QTRY_VERIFY_WITH_TIMEOUT(surface->isVisible(), patienceMs);
    const QImage before = surface->grab().toImage();
    QTRY_VERIFY_WITH_TIMEOUT(surface->grab().toImage() != before, patienceMs);
}

void TestDemoHostScenario::dragTheStreamOntoTheProgramMonitor()
{
    InputSourceItem* const stream = box(streamKind)->findItem(m_streamId);
    QVERIFY(stream != nullptr);
    ProgramMonitor* const monitor = m_window->programMonitor();
    QCOMPARE(monitor->programId(), uint64_t(0));
    QSignalSpy dropped(monitor, &ProgramMonitor::sourceDropped);

    // The operator scrolls to the tile, presses on it and moves more than 30 pixels with the
    // button held.
    auto* const area =
        m_window->panel()->findChild<QScrollArea*>(QStringLiteral("inputSourceScrollArea"));
    area->ensureWidgetVisible(stream, 0, 0);
    QApplication::processEvents();
    DragCatcher catcher(stream);
    QSignalSpy asked(stream, &InputSourceItem::signalGetInputSourceMeta);
    QWindow* const window = m_window->windowHandle();
    const QPoint press = stream->mapTo(m_window.get(), QPoint(stream->width() / 2, 40));
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, press);
    QTest::mouseMove(window, press + QPoint(20, 10));
    QTest::mouseMove(window, press + QPoint(60, 20));
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, press + QPoint(60, 20));
    QCOMPARE(asked.count(), 1);
    QTRY_VERIFY2_WITH_TIMEOUT(catcher.payload() != nullptr, "the tile's drag carried nothing",
                              patienceMs);
    QMimeData* const payload = catcher.payload();

    // Where the windowing system would deliver it: enter, move, drop on the monitor.
    const QPoint spot = monitor->rect().center();
    QDragEnterEvent enter(spot, Qt::MoveAction, payload, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(monitor, &enter);
    QVERIFY(enter.isAccepted());
    QDragMoveEvent move(spot, Qt::MoveAction, payload, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(monitor, &move);
    QVERIFY(move.isAccepted());
    QDropEvent drop(spot, Qt::MoveAction, payload, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(monitor, &drop);
    QVERIFY(drop.isAccepted());
    QCOMPARE(dropped.count(), 1);

    const ProgramMonitor::DropRecord received = monitor->lastDrop();
    QCOMPARE(received.id, m_streamId);
    QCOMPARE(received.name, m_streamName);
    QVERIFY(received.native);
    QVERIFY(!received.damaged);
    for (const char* format :
         {"materialId", "resId", "meta", "webMode", "damaged", "type", "size"}) {
        QVERIFY2(received.formats.contains(QLatin1String(format)), format);
    }
    QCOMPARE(payload->data(QStringLiteral("resId")), QByteArray::number(qulonglong(m_streamId)));

    // On program: shown large with its name, live, and in use.
    QCOMPARE(monitor->programId(), m_streamId);
    QCOMPARE(m_window->manager()->programSource(), m_streamId);
    auto* const caption = monitor->findChild<QLabel*>(QStringLiteral("programCaption"));
    QVERIFY(caption->text().contains(m_streamName));
    QTRY_VERIFY_WITH_TIMEOUT(monitor->shownFrames() > 10, patienceMs);
    const QImage before = monitor->grab().toImage();
    QTRY_VERIFY_WITH_TIMEOUT(monitor->grab().toImage() != before, patienceMs);
    QVERIFY(m_window->isInUse(m_streamId));

    // Something that is not a tile is refused.
    QMimeData other;
    other.setText(QStringLiteral("hello"));
    QDragEnterEvent stranger(spot, Qt::CopyAction, &other, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(monitor, &stranger);
    QVERIFY(!stranger.isAccepted());
}

void TestDemoHostScenario::putASourceOnProgramFromTheKeyboard()
{
    // A source that is not previewed: only the program makes it in use.
    const uint64_t id = idOf(*m_window, "Stage Cam");
    InputSourceItem* const stage = tile(streamKind, "Stage Cam");
    QVERIFY(stage != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(stage->isOnline(), patienceMs);
    QVERIFY(!m_window->isInUse(id));
    select(stage);
    QCOMPARE(box(streamKind)->selectedIds(), std::vector<uint64_t>{id});

    auto* const action = m_window->findChild<QAction*>(QStringLiteral("putOnProgramAction"));
    QVERIFY(action != nullptr);
    QVERIFY(action->shortcuts().contains(QKeySequence(Qt::CTRL + Qt::Key_Return)));
    QApplication::setActiveWindow(m_window.get());
    QTest::keyClick(m_window.get(), Qt::Key_Return, Qt::ControlModifier);
    QTRY_COMPARE_WITH_TIMEOUT(m_window->programMonitor()->programId(), id, patienceMs);
    QVERIFY(m_window->isInUse(id));
    QVERIFY(!m_window->manager()->isInUse(id));
    // The source on program delivers frames though nobody previews it.
    QTRY_VERIFY_WITH_TIMEOUT(m_window->programMonitor()->shownFrames() > 5, patienceMs);
    QVERIFY(!m_window->isInUse(m_streamId) || m_window->manager()->isInUse(m_streamId));
}

void TestDemoHostScenario::noVisibleTextIsARawKeyInAnyLanguage()
{
    auto* const chooser =
        m_window->findChild<vexa::widgets::ComboBox*>(QStringLiteral("languageChooser"));
    QVERIFY(chooser != nullptr);
    const auto* streams = qobject_cast<vexa::inputsource::StreamingBox*>(box(streamKind));
    const auto* pages = qobject_cast<vexa::inputsource::WebBox*>(box(webKind));
    QVERIFY(streams != nullptr && pages != nullptr);

    for (const QString& code :
         {QStringLiteral("en_US"), QStringLiteral("zh_TW"), QStringLiteral("zh_CN")}) {
        Q_EMIT chooser->activated(chooser->findData(code));
        const std::map<QString, QString> keys = keysOf(code);
        QVERIFY(keys.size() > 60);
        QStringList texts = textsOf(m_window.get());
        QVERIFY(texts
                    .filter(QRegularExpression(QStringLiteral("^") +
                                               QRegularExpression::escape(text("InputSource")) +
                                               QStringLiteral("\t")))
                    .size() > 0);

        // The panel's menu, and each dialog as it is shown, answered with its cancel button.
        for (const QString& entry : choose(ClearAll)) {
            texts << entry + QStringLiteral("\tinputSourceMenu");
        }
        vexa::testing::ModalAnswerer clear;
        clear.setTimeout(patienceMs);
        QString clearTitle;
        clear.whenShown([&texts, &clearTitle](QWidget* modal) {
            texts << textsOf(modal);
            clearTitle = modal->findChild<QLabel*>(QStringLiteral("titleLabel"))->text();
            QTest::mouseClick(modal->findChild<QAbstractButton*>(QStringLiteral("secondBtn")),
                              Qt::LeftButton);
        });
        QTRY_VERIFY_WITH_TIMEOUT(!clear.isWaiting(), patienceMs);
        QVERIFY2(clear.answered(), qPrintable(clear.errorString()));
        // The widget kit's own words come from the window's translator of them.
        QCOMPARE(clearTitle, code == QLatin1String("en_US") ? QStringLiteral("Warning")
                                                            : QStringLiteral("警告"));

        const std::pair<MenuRow, const char*> dialogs[] = {
            {AddStream, "cancelBtn"}, {AddNdi, "ndiCancelBtn"}, {AddWeb, "webCancelBtn"}};
        for (const auto& [row, cancel] : dialogs) {
            vexa::testing::ModalAnswerer answerer;
            answerer.setTimeout(patienceMs);
            answerer.whenShown([&texts, cancel = cancel](QWidget* modal) {
                texts << textsOf(modal);
                QTest::mouseClick(modal->findChild<QAbstractButton*>(QLatin1String(cancel)),
                                  Qt::LeftButton);
            });
            choose(row);
            QTRY_VERIFY_WITH_TIMEOUT(!answerer.isWaiting(), patienceMs);
            QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
        }
        const QStringList raw = rawKeys(texts, keys);
        QVERIFY2(raw.isEmpty(), qPrintable(code + QStringLiteral(": ") + raw.join(", ")));
        QCOMPARE(
            m_window->findChild<QDockWidget*>(QStringLiteral("inputSourceDock"))->windowTitle(),
            text("InputSource"));
        QCOMPARE(m_window->programMonitor()->accessibleName(),
                 keys.at(QStringLiteral("ProgramMonitor")));
    }
}

void TestDemoHostScenario::deleteASourceInUseAndOneNotInUse()
{
    InputSourceBox* const streams = box(streamKind);
    const uint64_t stage = idOf(*m_window, "Stage Cam");
    QCOMPARE(m_window->programMonitor()->programId(), stage);

    // On program: the panel asks first.
    select(streams->findItem(stage));
    vexa::testing::ModalAnswerer confirm;
    confirm.setTimeout(patienceMs);
    confirm.clickWhenShown(QStringLiteral("firstBtn"));
    QTest::keyClick(streams, Qt::Key_Delete);
    QTRY_VERIFY_WITH_TIMEOUT(!confirm.isWaiting(), patienceMs);
    QVERIFY2(confirm.answered(), qPrintable(confirm.errorString()));
    QCOMPARE(confirm.modalClassName(), QStringLiteral("vexa::widgets::TipDialog"));
    QTRY_VERIFY_WITH_TIMEOUT(streams->findItem(stage) == nullptr, patienceMs);
    QVERIFY(m_window->manager()->getResourceById(stage) == nullptr);
    // A source that is gone leaves the monitor.
    QTRY_COMPARE_WITH_TIMEOUT(m_window->programMonitor()->programId(), uint64_t(0), patienceMs);

    // Neither previewed nor on program: deleted without a question.
    InputSourceBox* const senders = box(ndiKind);
    const uint64_t replay = idOf(*m_window, "REPLAY-1");
    QVERIFY(replay != 0);
    QVERIFY(!m_window->isInUse(replay));
    select(senders->findItem(replay));
    vexa::testing::ModalAnswerer none;
    none.setTimeout(1000);
    none.clickWhenShown(QStringLiteral("secondBtn"));
    QTest::keyClick(senders, Qt::Key_Delete);
    QTRY_VERIFY_WITH_TIMEOUT(senders->findItem(replay) == nullptr, patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(!none.isWaiting(), patienceMs);
    QVERIFY(none.timedOut());
    QVERIFY(m_window->manager()->getResourceById(replay) == nullptr);
}

void TestDemoHostScenario::clearAllWithoutAndWithTheCheckBox()
{
    // The new stream goes back on program; the seeded previews stay in use too.
    ProgramMonitor* const monitor = m_window->programMonitor();
    monitor->setProgram(m_streamId, m_streamName);
    const std::vector<uint64_t> previewed = m_window->manager()->previewedIds();
    QVERIFY(!previewed.empty());

    vexa::testing::ModalAnswerer keepInUse;
    keepInUse.setTimeout(patienceMs);
    keepInUse.clickWhenShown(QStringLiteral("firstBtn"));
    choose(ClearAll);
    QTRY_VERIFY_WITH_TIMEOUT(!keepInUse.isWaiting(), patienceMs);
    QVERIFY2(keepInUse.answered(), qPrintable(keepInUse.errorString()));
    QVERIFY(keepInUse.labelTexts().contains(text("ClearText")));

    // What is in use stays; the rest goes, capture devices always stay.
    const auto inUseOnly = [this] {
        for (const auto& resource : m_window->manager()->getResources()) {
            if (static_cast<int>(resource->getType()) != captureKind &&
                !m_window->isInUse(resource->getId())) {
                return false;
            }
        }
        return true;
    };
    QTRY_VERIFY_WITH_TIMEOUT(inUseOnly(), patienceMs);
    QVERIFY(m_window->manager()->getResourceById(m_streamId) != nullptr);
    QCOMPARE(countOf(*m_window, captureKind), 2);
    QCOMPARE(monitor->programId(), m_streamId);

    vexa::testing::ModalAnswerer clearEverything;
    clearEverything.setTimeout(patienceMs);
    clearEverything.clickWhenShown(
        QStringList{QStringLiteral("checkBox"), QStringLiteral("firstBtn")});
    choose(ClearAll);
    QTRY_VERIFY_WITH_TIMEOUT(!clearEverything.isWaiting(), patienceMs);
    QVERIFY2(clearEverything.answered(), qPrintable(clearEverything.errorString()));
    QTRY_COMPARE_WITH_TIMEOUT(int(m_window->manager()->getResources().size()), 2, patienceMs);
    QCOMPARE(countOf(*m_window, captureKind), 2);
    QTRY_COMPARE_WITH_TIMEOUT(box(streamKind)->itemCount(), 0, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(box(ndiKind)->itemCount(), 0, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(box(webKind)->itemCount(), 0, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(monitor->programId(), uint64_t(0), patienceMs);
}

void TestDemoHostScenario::theWindowIsUsableFromTheKeyboard()
{
    // Tab walks the toolbar, the panel, the monitor and the messages, as they are laid out.
    auto* const languages =
        m_window->findChild<vexa::widgets::ComboBox*>(QStringLiteral("languageChooser"));
    auto* const thresholds =
        m_window->findChild<vexa::widgets::ComboBox*>(QStringLiteral("loadThresholdChooser"));
    auto* const messages = m_window->findChild<QListWidget*>(QStringLiteral("messageList"));
    ProgramMonitor* const monitor = m_window->programMonitor();
    QCOMPARE(thresholds->nextInFocusChain(), static_cast<QWidget*>(languages));
    QCOMPARE(languages->nextInFocusChain(), static_cast<QWidget*>(box(captureKind)));
    QCOMPARE(monitor->nextInFocusChain(), static_cast<QWidget*>(messages));
    QVERIFY(monitor->focusPolicy() & Qt::TabFocus);

    // Every widget the window adds has a name in the operator's language.
    m_window->switchLanguage(QStringLiteral("zh_TW"));
    const std::map<QString, QString> keys = keysOf(QStringLiteral("zh_TW"));
    QCOMPARE(monitor->accessibleName(), keys.at(QStringLiteral("ProgramMonitor")));
    QCOMPARE(messages->accessibleName(), keys.at(QStringLiteral("MessageCentre")));
    QCOMPARE(languages->accessibleName(), keys.at(QStringLiteral("Language")));
    QCOMPARE(thresholds->accessibleName(), keys.at(QStringLiteral("LoadWarningAbove")));
    auto* const put = m_window->findChild<QAction*>(QStringLiteral("putOnProgramAction"));
    QCOMPARE(put->text(), keys.at(QStringLiteral("PutOnProgram")));
    m_window->switchLanguage(QStringLiteral("zh_CN"));
}

void TestDemoHostScenario::closingTheWindowWhileAQuestionIsOpen()
{
    // The host goes while the panel asks: the question closes, nothing is cleared, and the
    // threads come down in order.
    const std::size_t before = m_window->manager()->getResources().size();
    const std::shared_ptr<demohost::SimulatedInputSourceMgr> manager = m_window->manager();
    vexa::testing::ModalAnswerer answerer;
    answerer.setTimeout(patienceMs);
    answerer.whenShown([this](QWidget*) { m_window.reset(); });
    choose(ClearAll);
    QTRY_VERIFY_WITH_TIMEOUT(!answerer.isWaiting(), patienceMs);
    QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
    QVERIFY(m_window == nullptr);
    QCOMPARE(manager->getResources().size(), before);
    QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeModalWidget() == nullptr, patienceMs);
}

QTEST_MAIN(TestDemoHostScenario)

#include "tst_demohostscenario.moc"
