// SPDX-License-Identifier: MIT
// The bytes become a sequence of the manager's notifications — sources added (with repeated
// ids, of other kinds, without a media description, null), deleted, cleared, renamed, online
// states, online times, previews, resolutions — fired on the runtime thread as a real manager
// fires them. After each drain of the GUI thread's queue the box's tiles must match a model of
// what the notifications leave:
//
// - a resource whose media description is of the box's kind makes one tile, even when its id
//   already has tiles; one of another kind, without a description, or null makes none (a null
//   one is warned about);
// - a deletion removes one tile per listed occurrence of an id, the one added last first; an
//   id without tiles is skipped;
// - a clear removes every tile;
// - a rename, an online state, a preview and a resolution apply to the newest tile of the id;
//   online states of another kind are dropped; a rename or a resolution carries no kind, so
//   without a tile it is warned about whatever source it is about, as is an online state of
//   the box's kind.
//
// The tiles are read through Qt's object tree, by the object names the library documents:
// "nameEdit" (the text of its line edit "editor"), "state_online" / "state_offline" (the online
// dot) and "previewBtn" (checked means preview off).

#include "fuzzapplication.h"
#include "fuzzinput.h"

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/stresourcerenamedmodel.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/valuemeta.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

using quandel::resource::EnResourceType;
using vexa::fuzz::FuzzInput;
using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::STInputSource;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::LoggedMessage;
using vexa::testing::WarningRecorder;

namespace {

constexpr int maxOperations = 120;
// Making a tile costs a quarter of a millisecond in a release build and ten times that under the
// address sanitizer, so most inputs stay small; a few go past the 64 tiles the box makes per
// turn of the event loop.
constexpr int maxResources = 32;
constexpr int maxResourcesOfALargeInput = 160;
constexpr int unknownType = quandel::resource::toCode(EnResourceType::Unassigned);

const QString missingTileOnline =
    QStringLiteral("updateItemOnlineStatus nullptr == inputSourceItem");
const QString missingTile = QStringLiteral("nullptr == inputSourceItem");
const QString nullResource = QStringLiteral("nullptr == resource");

const EnResourceType kinds[] = {EnResourceType::NetworkStream, EnResourceType::NdiSource,
                                EnResourceType::LocalCaptureDevice, EnResourceType::WebPage,
                                static_cast<EnResourceType>(3)};

// One tile as the model expects it.
struct ModelTile
{
    QString name;
    bool online = false;
    bool previewChecked = true;
};

// One tile as the box shows it.
struct ShownTile
{
    QString name;
    bool online = false;
    bool previewChecked = false;
    const void* address = nullptr;
};

class Harness
{
public:
    explicit Harness(FuzzInput& input)
        : m_input(input)
        , m_recorder(std::make_unique<WarningRecorder>())
        , m_mgr(std::make_shared<FakeInputSourceMgr>(&m_runtime))
    {
        m_type = kinds[input.below(4)];
        m_idRange = 1 + input.below(10);
        m_checkEachStep = input.flag();
        // A shown box lays out and paints its tiles, which costs most of an input's time; a
        // quarter of the inputs do.
        m_showWindow = input.below(4) == 0;
        m_resourceLimit = input.below(8) == 0 ? maxResourcesOfALargeInput : maxResources;
        m_window.resize(400, 300);
        m_box = new InputSourceBox(&m_window);
        m_box->setResourceType(m_type);
        m_box->setZQRuntime(&m_runtime);
        m_box->setInputSourceMgr(m_mgr);
        m_box->setGeometry(0, 0, m_window.width(), m_window.height());
        if (m_showWindow) {
            m_window.show();
        }
    }

    ~Harness()
    {
        m_box->unsetInputSourceMgr();
        // Destroyed before the manager and the runtime it refers to.
        delete m_box;
    }

    void run()
    {
        for (int count = 0; count < maxOperations && m_input.remaining() > 0; ++count) {
            step();
            if (m_checkEachStep || m_input.below(8) == 0) {
                check();
            }
        }
        check();
    }

private:
    uint64_t anyId() { return 1 + m_input.below(static_cast<uint32_t>(m_idRange) + 2); }
    uint64_t knownId() { return 1 + m_input.below(static_cast<uint32_t>(m_idRange)); }

    int typeCode() const { return quandel::resource::toCode(m_type); }

    std::vector<ModelTile>* tilesOf(uint64_t id)
    {
        const auto found = m_tiles.find(id);
        return found == m_tiles.end() || found->second.empty() ? nullptr : &found->second;
    }

    void fire(const std::function<void(FakeInputSourceMgr&)>& emitter)
    {
        m_mgr->setResources(m_known);
        m_mgr->fireOnRuntime(emitter);
    }

    void step()
    {
        switch (m_input.below(10)) {
        case 0:
        case 1:
        case 2:
            add();
            break;
        case 3:
            remove();
            break;
        case 4:
            if (m_input.below(3) == 0) {
                clear();
            } else {
                remove();
            }
            break;
        case 5:
            rename();
            break;
        case 6:
            onlineStates();
            break;
        case 7:
            onlineTimes();
            break;
        case 8:
            previews();
            break;
        default:
            resolution();
            break;
        }
    }

    void add()
    {
        std::vector<IInputSourceMgr::ResourcePtr> resources;
        for (uint32_t index = 1 + m_input.below(4); index > 0 && m_added < m_resourceLimit;
             --index) {
            const uint64_t id = knownId();
            const uint32_t variant = m_input.below(12);
            if (variant == 11) {
                resources.push_back(nullptr);
                ++m_expected[nullResource];
                continue;
            }
            // Resource and description of the box's kind, mostly; now and then either of
            // another kind, or no description yet.
            const EnResourceType resourceType = variant == 8 ? kinds[m_input.below(5)] : m_type;
            const EnResourceType metaType = variant == 9 ? kinds[m_input.below(5)] : resourceType;
            ++m_added;
            const std::string serial = std::to_string(++m_made);
            auto resource =
                std::make_shared<quandel::resource::ValueResource>(id, resourceType, "r" + serial);
            const bool withMeta = variant != 10;
            // The tile shows the description's name, or the resource's when that is empty.
            const bool metaNamed = m_input.flag();
            if (withMeta) {
                zq::mediacore::MetaValues values;
                values.resourceType = metaType;
                values.name = metaNamed ? "m" + serial : std::string();
                values.address = "rtsp://192.0.2.1/" + serial;
                values.resolutionText = "1280*720";
                values.frameRate = 30.0;
                resource->setMeta(std::make_shared<zq::mediacore::ValueMeta>(std::move(values)));
            }
            if (withMeta && metaType == m_type) {
                m_tiles[id].push_back(
                    ModelTile{QString::fromStdString((metaNamed ? "m" : "r") + serial)});
            }
            resources.push_back(resource);
            m_known.push_back(resource);
        }
        fire([&resources](FakeInputSourceMgr& mgr) { mgr.signalResourcesAdded(resources, {}); });
    }

    void remove()
    {
        std::vector<uint64_t> ids;
        for (uint32_t index = 1 + m_input.below(4); index > 0; --index) {
            ids.push_back(m_input.below(4) == 0 && !ids.empty() ? ids.back() : anyId());
        }
        for (const uint64_t id : ids) {
            if (std::vector<ModelTile>* const tiles = tilesOf(id)) {
                tiles->pop_back();
            }
            const auto found =
                std::find_if(m_known.begin(), m_known.end(),
                             [id](const auto& resource) { return resource->getId() == id; });
            if (found != m_known.end()) {
                m_known.erase(found);
            }
        }
        fire([&ids](FakeInputSourceMgr& mgr) { mgr.signalResourcesDeleted(ids); });
    }

    void clear()
    {
        m_tiles.clear();
        m_known.clear();
        fire([](FakeInputSourceMgr& mgr) { mgr.signalResourcesCleared(); });
    }

    void rename()
    {
        vexa::STResourceRenamedModel model;
        model.id = anyId();
        // Short enough for the editor's cap; the flag stays 0, since a set flag asks the
        // operator in a modal dialog.
        model.name = "n" + std::to_string(++m_made);
        if (std::vector<ModelTile>* const tiles = tilesOf(model.id)) {
            tiles->back().name = QString::fromStdString(model.name);
        } else {
            ++m_expected[missingTile];
        }
        fire([&model](FakeInputSourceMgr& mgr) {
            bool exists = false;
            mgr.signalResourceRenamed(model, exists);
        });
    }

    void onlineStates()
    {
        std::map<uint64_t, bool> states;
        for (uint32_t index = 1 + m_input.below(4); index > 0; --index) {
            states[anyId()] = m_input.flag();
        }
        const int type =
            m_input.below(5) == 0 ? quandel::resource::toCode(kinds[m_input.below(5)]) : typeCode();
        if (type == typeCode()) {
            for (const auto& [id, online] : states) {
                if (std::vector<ModelTile>* const tiles = tilesOf(id)) {
                    tiles->back().online = online;
                } else {
                    ++m_expected[missingTileOnline];
                }
            }
        }
        fire([&states, type](FakeInputSourceMgr& mgr) {
            mgr.signalOnlineStatusChanged(states, type);
        });
    }

    void onlineTimes()
    {
        std::map<uint64_t, int> times;
        for (uint32_t index = 1 + m_input.below(4); index > 0; --index) {
            times[anyId()] = static_cast<int>(m_input.u32());
        }
        fire([&times](FakeInputSourceMgr& mgr) { mgr.signalOnlineTimeUpdated(times); });
    }

    void previews()
    {
        std::vector<STInputSource> sources;
        for (uint32_t index = 1 + m_input.below(3); index > 0; --index) {
            STInputSource source;
            source.id = anyId();
            source.preview = m_input.flag();
            sources.push_back(source);
        }
        for (const STInputSource& source : sources) {
            if (std::vector<ModelTile>* const tiles = tilesOf(source.id)) {
                tiles->back().previewChecked = !source.preview;
            }
        }
        fire([&sources](FakeInputSourceMgr& mgr) { mgr.signalPreviewedChanged(sources); });
    }

    void resolution()
    {
        STInputSource source;
        source.id = anyId();
        const uint32_t declared = m_input.below(4);
        source.sourceType = declared == 0   ? unknownType
                            : declared == 1 ? quandel::resource::toCode(kinds[m_input.below(5)])
                                            : typeCode();
        source.resolutionWidth = static_cast<int32_t>(m_input.u32());
        source.resolutionHeight = static_cast<int32_t>(m_input.between(-1, 4320));
        source.frameRate = static_cast<int32_t>(m_input.between(-1, 240));
        if (tilesOf(source.id) == nullptr) {
            ++m_expected[missingTile];
        }
        fire([&source](FakeInputSourceMgr& mgr) { mgr.signalResolutionUpdated(source); });
    }

    // Runs the GUI thread's queue until it is empty and the tile count has settled: two turns in
    // which the count stays put mean nothing the notifications queued is left.
    void drain()
    {
        int count = -1;
        int unchanged = 0;
        for (int round = 0; round < 10000 && unchanged < 2; ++round) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            const int now = m_box->itemCount();
            unchanged = now == count ? unchanged + 1 : 0;
            count = now;
        }
    }

    std::vector<ShownTile> shownTiles() const
    {
        std::vector<ShownTile> shown;
        for (QWidget* const widget : m_box->findChildren<QWidget*>()) {
            if (!widget->inherits("vexa::inputsource::InputSourceItem")) {
                continue;
            }
            ShownTile tile;
            // The name editor is the widget kit's EditBox, whose line edit is its "editor".
            const auto* const nameEdit = widget->findChild<QWidget*>(QStringLiteral("nameEdit"));
            const auto* const editor =
                nameEdit == nullptr ? nullptr
                                    : nameEdit->findChild<QLineEdit*>(QStringLiteral("editor"));
            tile.name = editor == nullptr ? QStringLiteral("?") : editor->text();
            tile.online = widget->findChild<QWidget*>(QStringLiteral("state_online")) != nullptr;
            const auto* const preview =
                widget->findChild<QAbstractButton*>(QStringLiteral("previewBtn"));
            tile.previewChecked = preview != nullptr && preview->isChecked();
            // The most derived object's address, comparable with what findItem() returns.
            tile.address = dynamic_cast<const void*>(widget);
            shown.push_back(tile);
        }
        return shown;
    }

    void check()
    {
        drain();
        QStringList problems;
        std::map<QString, ShownTile> shownByName;
        const std::vector<ShownTile> shown = shownTiles();
        for (const ShownTile& tile : shown) {
            if (!shownByName.emplace(tile.name, tile).second) {
                problems << QStringLiteral("two tiles named %1").arg(tile.name);
            }
        }
        int expectedCount = 0;
        for (const auto& [id, tiles] : m_tiles) {
            expectedCount += static_cast<int>(tiles.size());
            for (const ModelTile& tile : tiles) {
                const auto found = shownByName.find(tile.name);
                if (found == shownByName.end()) {
                    problems << QStringLiteral("no tile %1 of id %2").arg(tile.name).arg(id);
                    continue;
                }
                if (found->second.online != tile.online ||
                    found->second.previewChecked != tile.previewChecked) {
                    problems << QStringLiteral("tile %1: online %2 preview off %3, expected %4 %5")
                                    .arg(tile.name)
                                    .arg(found->second.online)
                                    .arg(found->second.previewChecked)
                                    .arg(tile.online)
                                    .arg(tile.previewChecked);
                }
            }
        }
        if (static_cast<int>(shown.size()) != expectedCount ||
            m_box->itemCount() != expectedCount) {
            problems << QStringLiteral("%1 tiles shown, itemCount() %2, %3 expected")
                            .arg(shown.size())
                            .arg(m_box->itemCount())
                            .arg(expectedCount);
        }
        for (uint64_t id = 1; id <= m_idRange + 2; ++id) {
            const void* const found = static_cast<const void*>(m_box->findItem(id));
            const auto model = m_tiles.find(id);
            const bool expected = model != m_tiles.end() && !model->second.empty();
            if ((found != nullptr) != expected) {
                problems << QStringLiteral("findItem(%1) %2")
                                .arg(id)
                                .arg(found ? QStringLiteral("found a tile")
                                           : QStringLiteral("found none"));
                continue;
            }
            if (expected) {
                const auto byName = shownByName.find(model->second.back().name);
                if (byName == shownByName.end() || byName->second.address != found) {
                    problems << QStringLiteral("findItem(%1) is not the newest tile %2")
                                    .arg(id)
                                    .arg(model->second.back().name);
                }
            }
        }
        std::map<QString, int> warned;
        for (const LoggedMessage& message : m_recorder->messages()) {
            // Qt's own notes (the offscreen platform's, say) come without a source file.
            if (message.type == QtWarningMsg && !message.file.isEmpty()) {
                ++warned[message.text];
            }
        }
        if (warned != m_expected) {
            for (const auto& [text, count] : warned) {
                problems << QStringLiteral("warned %1 times: %2").arg(count).arg(text);
            }
            for (const auto& [text, count] : m_expected) {
                problems << QStringLiteral("expected %1 times: %2").arg(count).arg(text);
            }
        }
        if (!problems.isEmpty()) {
            std::fprintf(stderr,
                         "fuzz_notifications: the box differs from the model (box type %d)\n  %s\n",
                         typeCode(), qPrintable(problems.join(QStringLiteral("\n  "))));
            std::abort();
        }
    }

    FuzzInput& m_input;
    std::unique_ptr<WarningRecorder> m_recorder;
    quandel::ZQRuntime m_runtime;
    std::shared_ptr<FakeInputSourceMgr> m_mgr;
    QWidget m_window;
    InputSourceBox* m_box = nullptr;
    EnResourceType m_type = EnResourceType::NetworkStream;
    uint64_t m_idRange = 1;
    bool m_checkEachStep = false;
    bool m_showWindow = false;
    int m_resourceLimit = maxResources;
    // Resources added so far, and serial numbers handed out for names.
    int m_added = 0;
    int m_made = 0;
    // Tiles per id, oldest first; the manager's resources in the order it finds them.
    std::map<uint64_t, std::vector<ModelTile>> m_tiles;
    std::vector<IInputSourceMgr::ResourcePtr> m_known;
    std::map<QString, int> m_expected;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    vexa::fuzz::guiApplication();
    FuzzInput input(data, size);
    Harness harness(input);
    harness.run();
    return 0;
}
