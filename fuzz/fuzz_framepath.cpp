// SPDX-License-Identifier: MIT
// The bytes become preview frames of any geometry, honest or lying, handed to a box's
// updateFrame() from several threads at once for random ids, while the manager adds and
// removes sources on its runtime thread and the GUI thread makes and destroys their tiles.
//
// A frame whose geometry the surface must refuse (docs/decisions.md, preview surface) carries
// a buffer far smaller than its geometry claims, so a surface that copied from it anyway would
// be caught by the address sanitizer. A frame the surface may accept always carries all the
// bytes it claims, as the frame interface promises. Afterwards the box must hold the tiles the
// manager's notifications leave, and must have warned about nothing but online states of ids
// without a tile.

#include "fuzzapplication.h"
#include "fuzzinput.h"

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/iframe.h>
#include <zq/mediacore/iframebuffer.h>
#include <zq/mediacore/valuemeta.h>

#include <QApplication>
#include <QWidget>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using quandel::resource::EnResourceType;
using vexa::fuzz::FuzzInput;
using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::InputSourceBox;
using vexa::testing::FakeInputSourceMgr;
using vexa::testing::LoggedMessage;
using vexa::testing::WarningRecorder;

namespace {

constexpr int maxOperations = 200;
constexpr int maxTiles = 40;
// A frame thread goes over its frames until the GUI thread is done, at most this often.
constexpr int maxPasses = 50;
// The surface's documented limits.
constexpr int64_t maxSide = 16384;
constexpr int64_t maxBytes = maxSide * maxSide * 4;
// An honest frame larger than this is made smaller, to keep an input's memory small.
constexpr int64_t maxHonestBytes = 1 << 20;

const QString missingTileWarning =
    QStringLiteral("updateItemOnlineStatus nullptr == inputSourceItem");

class FuzzBuffer : public zq::mediacore::IFrameBuffer
{
public:
    // Exactly `size` bytes, so that reading one more is caught; no memory with `nullData`.
    FuzzBuffer(std::size_t size, int stride, bool nullData)
        : m_bytes(nullData ? nullptr : new uint8_t[size])
        , m_stride(stride)
    {
        for (std::size_t index = 0; m_bytes && index < size; ++index) {
            m_bytes[index] = static_cast<uint8_t>(index * 7);
        }
    }

    const uint8_t* data() const override { return m_bytes.get(); }
    int stride() const override { return m_stride; }

private:
    std::unique_ptr<uint8_t[]> m_bytes;
    int m_stride;
};

class FuzzFrame : public zq::mediacore::IFrame
{
public:
    FuzzFrame(int width, int height, double rate, std::shared_ptr<FuzzBuffer> buffer)
        : m_width(width)
        , m_height(height)
        , m_rate(rate)
        , m_buffer(std::move(buffer))
    {}

    int getWidth() const override { return m_width; }
    int getHeight() const override { return m_height; }
    double getFrameRate() const override { return m_rate; }
    std::shared_ptr<zq::mediacore::IFrameBuffer> getBuffer() const override { return m_buffer; }

private:
    int m_width;
    int m_height;
    double m_rate;
    std::shared_ptr<FuzzBuffer> m_buffer;
};

// The rule the surface documents for the frames it copies.
bool acceptable(int64_t width, int64_t height, int64_t stride)
{
    return width > 0 && height > 0 && width <= maxSide && height <= maxSide &&
           stride >= width * 4 && height * stride <= maxBytes;
}

std::shared_ptr<const FuzzFrame> honestFrame(int width, int height, int stride, double rate)
{
    const auto bytes = static_cast<std::size_t>(height) * static_cast<std::size_t>(stride);
    return std::make_shared<FuzzFrame>(width, height, rate,
                                       std::make_shared<FuzzBuffer>(bytes, stride, false));
}

// Null means "hand in a null frame pointer".
std::shared_ptr<const FuzzFrame> decodeFrame(FuzzInput& input)
{
    static const double rates[] = {0.0,
                                   25.0,
                                   29.97,
                                   60.0,
                                   -1.0,
                                   std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(),
                                   1e308,
                                   0.4};
    const double rate = rates[input.below(9)];
    switch (input.below(6)) {
    case 0:
        return nullptr;
    case 1: // no buffer at all
        return std::make_shared<FuzzFrame>(static_cast<int>(input.between(-2, 64)),
                                           static_cast<int>(input.between(-2, 64)), rate, nullptr);
    case 2: { // a buffer without memory, whatever the geometry says
        const auto width = static_cast<int>(input.u32());
        const auto height = static_cast<int>(input.u32());
        const auto stride = static_cast<int>(input.u32());
        return std::make_shared<FuzzFrame>(width, height, rate,
                                           std::make_shared<FuzzBuffer>(0, stride, true));
    }
    case 3:
    case 4: { // a plausible picture, lines padded or not
        const auto width = static_cast<int>(input.between(1, 96));
        const auto height = static_cast<int>(input.between(1, 64));
        const int stride = width * 4 + static_cast<int>(input.below(4)) * 4 +
                           (input.flag() ? static_cast<int>(input.below(4)) : 0);
        return honestFrame(width, height, stride, rate);
    }
    default: { // any geometry at all
        const auto width = static_cast<int32_t>(input.u32());
        const auto height = static_cast<int32_t>(input.u32());
        const auto stride = static_cast<int32_t>(input.u32());
        if (acceptable(width, height, stride)) {
            if (static_cast<int64_t>(height) * stride <= maxHonestBytes) {
                return honestFrame(width, height, stride, rate);
            }
            // Too large to allocate for every input: one honest line of that width.
            return honestFrame(width, 1, width * 4, rate);
        }
        // Refused by the rule, so the surface must not read it: a few bytes only.
        const std::size_t bytes = input.below(64);
        return std::make_shared<FuzzFrame>(width, height, rate,
                                           std::make_shared<FuzzBuffer>(bytes, stride, false));
    }
    }
}

struct FrameOperation
{
    uint64_t id = 0;
    std::shared_ptr<const FuzzFrame> frame;
};

struct ManagerOperation
{
    enum Kind
    {
        Add,
        Delete,
        Clear,
        Online,
        Events
    } kind = Events;
    std::vector<IInputSourceMgr::ResourcePtr> resources;
    std::vector<uint64_t> ids;
    std::map<uint64_t, bool> states;
};

IInputSourceMgr::ResourcePtr makeResource(uint64_t id, EnResourceType type)
{
    zq::mediacore::MetaValues values;
    values.resourceType = type;
    values.name = "Source " + std::to_string(id);
    values.address = "rtsp://192.0.2.1/" + std::to_string(id);
    values.resolutionText = "1920*1080";
    values.frameRate = 25.0;
    auto resource = std::make_shared<quandel::resource::ValueResource>(id, type, values.name);
    resource->setMeta(std::make_shared<zq::mediacore::ValueMeta>(std::move(values)));
    return resource;
}

struct Plan
{
    EnResourceType type = EnResourceType::NetworkStream;
    uint64_t idRange = 1;
    std::vector<std::vector<FrameOperation>> frameThreads;
    std::vector<ManagerOperation> managerOperations;
};

Plan decode(FuzzInput& input)
{
    static const EnResourceType types[] = {EnResourceType::NetworkStream, EnResourceType::NdiSource,
                                           EnResourceType::LocalCaptureDevice,
                                           EnResourceType::WebPage};
    Plan plan;
    plan.type = types[input.below(4)];
    plan.frameThreads.resize(1 + input.below(4));
    plan.idRange = 1 + input.below(12);
    const auto anyId = [&] { return 1 + input.below(static_cast<uint32_t>(plan.idRange) + 2); };
    int added = 0;
    for (int count = 0; count < maxOperations && input.remaining() > 0; ++count) {
        const uint32_t kind = input.below(10);
        if (kind < 5) {
            const auto thread = input.below(static_cast<uint32_t>(plan.frameThreads.size()));
            FrameOperation operation;
            operation.id = anyId();
            operation.frame = decodeFrame(input);
            plan.frameThreads[thread].push_back(std::move(operation));
            continue;
        }
        ManagerOperation operation;
        switch (kind) {
        case 5:
            operation.kind = ManagerOperation::Add;
            for (uint32_t index = 1 + input.below(3); index > 0 && added < maxTiles; --index) {
                // Now and then a source of another kind, which makes no tile here.
                const bool own = input.below(5) != 0;
                const EnResourceType type = own ? plan.type : types[input.below(4)];
                operation.resources.push_back(
                    makeResource(1 + input.below(static_cast<uint32_t>(plan.idRange)), type));
                ++added;
            }
            break;
        case 6:
            operation.kind = ManagerOperation::Delete;
            for (uint32_t index = 1 + input.below(3); index > 0; --index) {
                operation.ids.push_back(anyId());
            }
            break;
        case 7:
            operation.kind =
                input.below(4) == 0 ? ManagerOperation::Clear : ManagerOperation::Online;
            for (uint32_t index = 1 + input.below(3); index > 0; --index) {
                operation.states[anyId()] = input.flag();
            }
            break;
        default:
            operation.kind = ManagerOperation::Events;
            break;
        }
        plan.managerOperations.push_back(std::move(operation));
    }
    return plan;
}

void fail(const QString& what)
{
    std::fprintf(stderr, "fuzz_framepath: %s\n", qPrintable(what));
    std::abort();
}

// Runs the GUI thread's queue until the box has made every tile still to be made. Each round
// runs what was queued before it; the box makes the tiles of a notification a batch per round,
// so two rounds in which the count stays put mean nothing is left to make.
void drainEvents(const InputSourceBox& box)
{
    int count = -1;
    int unchanged = 0;
    for (int round = 0; round < 10000 && unchanged < 2; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        const int now = box.itemCount();
        unchanged = now == count ? unchanged + 1 : 0;
        count = now;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    vexa::fuzz::guiApplication();
    FuzzInput input(data, size);
    const Plan plan = decode(input);

    auto recorder = std::make_unique<WarningRecorder>();
    quandel::ZQRuntime runtime;
    const auto mgr = std::make_shared<FakeInputSourceMgr>(&runtime);
    QWidget window;
    window.resize(480, 320);
    auto* const box = new InputSourceBox(&window);
    box->setResourceType(plan.type);
    box->setZQRuntime(&runtime);
    box->setInputSourceMgr(mgr);
    box->setGeometry(0, 0, window.width(), window.height());
    window.show();

    std::atomic<bool> guiDone{false};
    std::vector<std::thread> threads;
    for (const std::vector<FrameOperation>& frames : plan.frameThreads) {
        threads.emplace_back([&guiDone, &frames, box] {
            for (int pass = 0; pass < maxPasses; ++pass) {
                for (const FrameOperation& operation : frames) {
                    box->updateFrame(operation.id, operation.frame.get());
                }
                if (guiDone.load()) {
                    break;
                }
                std::this_thread::yield();
            }
        });
    }

    // What the manager's notifications leave: tiles per id, the newest removed first.
    std::map<uint64_t, int> tiles;
    int expectedMissingTileWarnings = 0;
    for (const ManagerOperation& operation : plan.managerOperations) {
        switch (operation.kind) {
        case ManagerOperation::Add:
            for (const auto& resource : operation.resources) {
                if (resource->getMeta()->getResourceType() == plan.type) {
                    ++tiles[resource->getId()];
                }
            }
            mgr->fireOnRuntime([&operation](FakeInputSourceMgr& manager) {
                manager.signalResourcesAdded(operation.resources, {});
            });
            break;
        case ManagerOperation::Delete:
            for (const uint64_t id : operation.ids) {
                if (tiles[id] > 0) {
                    --tiles[id];
                }
            }
            mgr->fireOnRuntime([&operation](FakeInputSourceMgr& manager) {
                manager.signalResourcesDeleted(operation.ids);
            });
            break;
        case ManagerOperation::Clear:
            tiles.clear();
            mgr->fireOnRuntime(
                [](FakeInputSourceMgr& manager) { manager.signalResourcesCleared(); });
            break;
        case ManagerOperation::Online:
            for (const auto& entry : operation.states) {
                expectedMissingTileWarnings += tiles[entry.first] > 0 ? 0 : 1;
            }
            mgr->fireOnRuntime([&operation, &plan](FakeInputSourceMgr& manager) {
                manager.signalOnlineStatusChanged(operation.states,
                                                  quandel::resource::toCode(plan.type));
            });
            break;
        case ManagerOperation::Events:
            QCoreApplication::processEvents();
            break;
        }
    }
    guiDone = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    drainEvents(*box);

    int expectedCount = 0;
    for (const auto& [id, count] : tiles) {
        expectedCount += count;
        if ((box->findItem(id) != nullptr) != (count > 0)) {
            fail(QStringLiteral("id %1 should have %2 tiles").arg(id).arg(count));
        }
    }
    if (box->itemCount() != expectedCount) {
        fail(QStringLiteral("%1 tiles instead of %2").arg(box->itemCount()).arg(expectedCount));
    }

    box->unsetInputSourceMgr();
    drainEvents(*box);
    int missingTileWarnings = 0;
    for (const LoggedMessage& message : recorder->messages()) {
        // Qt's own notes (the offscreen platform's, say) come without a source file.
        if (message.type != QtWarningMsg || message.file.isEmpty()) {
            continue;
        }
        if (message.text != missingTileWarning) {
            fail(QStringLiteral("unexpected warning: ") + message.text);
        }
        ++missingTileWarnings;
    }
    if (missingTileWarnings != expectedMissingTileWarnings) {
        fail(QStringLiteral("%1 warnings about online states of ids without a tile, %2 expected")
                 .arg(missingTileWarnings)
                 .arg(expectedMissingTileWarnings));
    }
    return 0;
}
