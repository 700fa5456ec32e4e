// Live previews as a host runs them: a window with four stream boxes of 16 tiles each, every
// source online and previewed, the default theme and its loading animation applied, and frames
// at 30 fps per source handed in from four frame threads. What is measured is CPU, from the
// threads' own clocks, per frame handed in: on the GUI thread, which repaints the previews, and
// on the frame threads, which copy the pixels.
//
// Two baselines run in the same process, at the same rate and with the same frames:
//  - a bare memcpy of each frame on the frame threads (what the frame threads cannot do less of);
//  - a bare QPainter::drawImage of each frame into a 168 x 88 rectangle on the GUI thread (what
//    painting a preview costs when nothing else is drawn).
// Further figures, not held to a target: repaints of the preview surfaces and of all widgets per
// frame, frames per second reached, the process's resident memory.
//
// Besides, in processes of their own started as a host starts: the time from main() to the end
// of the first paint of the window holding its 64 tiles, against the same window empty.
//
// Not a Google Benchmark table: every run is a fixed stretch of wall time with threads of its
// own. The program accepts the flags the other benchmark programs take: the number of
// repetitions (--benchmark_repetitions, medians are compared) and a short smoke run
// (--benchmark_min_time below 0.1).

#include "support/offscreenplatform.h"
#include "support/theme.h"

#include "diplaywind.h"

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourceitem.h>
#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/framefactory.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/iframebuffer.h>
#include <zq/mediacore/valuemeta.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <pthread.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using quandel::resource::EnResourceType;
using vexa::inputsource::DiplayWind;
using vexa::inputsource::IInputSourceMgr;
using vexa::inputsource::InputSourceBox;
using vexa::inputsource::InputSourceItem;
using vexa::inputsource::STInputSource;
using vexa::testing::FakeInputSourceMgr;

namespace {

constexpr int kBoxes = 4;
constexpr int kTilesPerBox = 16;
constexpr int kSources = kBoxes * kTilesPerBox;
constexpr int kFrameThreads = 4;
constexpr int kSourcesPerThread = kSources / kFrameThreads;
constexpr double kFps = 30.0;
constexpr int kPreviewWidth = 168;
constexpr int kPreviewHeight = 88;
constexpr int kColumns = 6;
constexpr int kWindowWidth = kColumns * 178 + 16;
constexpr int kWindowHeight = 1900;
constexpr int kStreamType = quandel::resource::toCode(EnResourceType::NetworkStream);
constexpr std::chrono::seconds kSettleTimeout(30);

struct Options
{
    int repetitions = 1;
    std::chrono::milliseconds warmUp{700};
    std::chrono::milliseconds window{2500};
    int firstPaintChild = -1;
    // Runs only the cases whose name ("live/480x270", "firstpaint") contains it.
    std::string filter;

    bool selects(const std::string& name) const
    {
        return filter.empty() || name.find(filter) != std::string::npos;
    }
};

double threadCpuSeconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

clockid_t currentThreadClock()
{
    clockid_t clock{};
    pthread_getcpuclockid(pthread_self(), &clock);
    return clock;
}

double residentMegabytes()
{
    long pages = 0;
    long resident = 0;
    if (FILE* const statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2) {
            resident = 0;
        }
        std::fclose(statm);
    }
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576.0;
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// Runs the event loop for `duration`.
void runEventLoop(std::chrono::milliseconds duration)
{
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

bool processEventsUntil(const std::function<bool()>& done)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!done()) {
        if (elapsed.elapsed() > std::chrono::milliseconds(kSettleTimeout).count()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

// The frames every run hands in: two per frame thread, taken in turns, so that consecutive
// frames of a source differ.
struct FrameSet
{
    FrameSet(int width, int height)
    {
        for (int index = 0; index < kFrameThreads * 2; ++index) {
            frames.push_back(vexa::testing::FrameFactory::pattern(
                width, height, static_cast<uint64_t>(index), index * 40, kFps));
        }
    }

    const zq::mediacore::RgbaFrame& frame(int thread, uint64_t turn) const
    {
        return *frames[static_cast<std::size_t>(thread * 2) + turn % 2];
    }

    std::vector<std::unique_ptr<zq::mediacore::RgbaFrame>> frames;
};

// Four threads, each handing a frame of each of its 16 sources to `sink` 30 times a second. A
// thread that falls behind skips ahead rather than catching up in a burst.
class FrameThreads
{
public:
    using Sink = std::function<void(int thread, int source, const zq::mediacore::IFrame&)>;

    FrameThreads(const FrameSet& frames, Sink sink)
    {
        for (int thread = 0; thread < kFrameThreads; ++thread) {
            threads.emplace_back([this, &frames, sink, thread] { run(frames, sink, thread); });
        }
        for (std::thread& thread : threads) {
            clockid_t clock{};
            pthread_getcpuclockid(thread.native_handle(), &clock);
            clocks.push_back(clock);
        }
    }

    ~FrameThreads()
    {
        stopping = true;
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    FrameThreads(const FrameThreads&) = delete;
    FrameThreads& operator=(const FrameThreads&) = delete;

    double cpuSeconds() const
    {
        double total = 0;
        for (const clockid_t clock : clocks) {
            total += threadCpuSeconds(clock);
        }
        return total;
    }

    uint64_t framesHandedIn() const { return handedIn.load(std::memory_order_relaxed); }

private:
    void run(const FrameSet& frames, const Sink& sink, int thread)
    {
        using Clock = std::chrono::steady_clock;
        const auto period =
            std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / kFps));
        Clock::time_point next = Clock::now();
        uint64_t turn = 0;
        while (!stopping.load(std::memory_order_relaxed)) {
            const zq::mediacore::IFrame& frame = frames.frame(thread, turn++);
            for (int source = 0; source < kSourcesPerThread; ++source) {
                sink(thread, thread * kSourcesPerThread + source, frame);
                handedIn.fetch_add(1, std::memory_order_relaxed);
            }
            next += period;
            const Clock::time_point now = Clock::now();
            if (next < now) {
                next = now;
            }
            std::this_thread::sleep_until(next);
        }
    }

    std::atomic<bool> stopping{false};
    std::atomic<uint64_t> handedIn{0};
    std::vector<std::thread> threads;
    std::vector<clockid_t> clocks;
};

struct Sample
{
    double guiCpuPerFrame = 0;   // seconds
    double frameCpuPerFrame = 0; // seconds
    double guiCores = 0;         // GUI thread's CPU seconds per second
    double frameCores = 0;       // all frame threads' CPU seconds per second
    double framesPerSecond = 0;
    double surfacePaintsPerFrame = 0;
    double widgetPaintsPerFrame = 0;
    double residentMb = 0;
};

// Counts the paint events of the widgets it watches.
class PaintCounter : public QObject
{
public:
    void watch(QWidget* widget, bool isSurface)
    {
        widget->installEventFilter(this);
        if (isSurface) {
            surfaces.push_back(widget);
        }
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++widgetPaints;
            if (std::find(surfaces.begin(), surfaces.end(), watched) != surfaces.end()) {
                ++surfacePaints;
            }
        }
        return false;
    }

    uint64_t widgetPaints = 0;
    uint64_t surfacePaints = 0;
    std::vector<QObject*> surfaces;
};

// The measured stretch: GUI thread and frame threads' CPU, frames handed in, paints.
template <typename Frames>
Sample measure(const Options& options, const Frames& frameThreads,
               const std::function<uint64_t()>& guiFrames, const PaintCounter* paints)
{
    // Every surface has its picture's memory before the measured stretch begins.
    const uint64_t warmFrames = guiFrames() + 2 * kSources;
    processEventsUntil([&] { return guiFrames() >= warmFrames; });
    runEventLoop(options.warmUp);
    const clockid_t guiClock = currentThreadClock();
    const double guiStart = threadCpuSeconds(guiClock);
    const double framesStart = frameThreads.cpuSeconds();
    const uint64_t handedStart = guiFrames();
    const uint64_t widgetPaintsStart = paints ? paints->widgetPaints : 0;
    const uint64_t surfacePaintsStart = paints ? paints->surfacePaints : 0;
    QElapsedTimer wall;
    wall.start();
    runEventLoop(options.window);
    const double seconds = static_cast<double>(wall.nsecsElapsed()) * 1e-9;
    Sample sample;
    const double gui = threadCpuSeconds(guiClock) - guiStart;
    const double frames = frameThreads.cpuSeconds() - framesStart;
    const auto handed = static_cast<double>(std::max<uint64_t>(1, guiFrames() - handedStart));
    sample.guiCpuPerFrame = gui / handed;
    sample.frameCpuPerFrame = frames / handed;
    sample.guiCores = gui / seconds;
    sample.frameCores = frames / seconds;
    sample.framesPerSecond = handed / seconds;
    if (paints != nullptr) {
        sample.surfacePaintsPerFrame =
            static_cast<double>(paints->surfacePaints - surfacePaintsStart) / handed;
        sample.widgetPaintsPerFrame =
            static_cast<double>(paints->widgetPaints - widgetPaintsStart) / handed;
    }
    sample.residentMb = residentMegabytes();
    return sample;
}

// Baseline: the frame threads copy every frame into a buffer of its source, nothing else.
Sample measureMemcpy(const Options& options, const FrameSet& frames)
{
    const auto& first = frames.frame(0, 0);
    const std::size_t bytes =
        static_cast<std::size_t>(first.getHeight()) * static_cast<std::size_t>(first.stride());
    std::vector<std::unique_ptr<uint8_t[]>> copies;
    for (int source = 0; source < kSources; ++source) {
        copies.emplace_back(new uint8_t[bytes]);
        std::memset(copies.back().get(), 0, bytes);
    }
    FrameThreads threads(frames,
                         [&copies, bytes](int, int source, const zq::mediacore::IFrame& frame) {
                             std::memcpy(copies[static_cast<std::size_t>(source)].get(),
                                         frame.getBuffer()->data(), bytes);
                         });
    return measure(
        options, threads, [&threads] { return threads.framesHandedIn(); }, nullptr);
}

// Baseline: the GUI thread draws every frame of every source into its 168 x 88 rectangle of an
// opaque picture the size of the tile grid, 30 times a second; no frame thread works.
Sample measureDrawImage(const Options& options, const FrameSet& frames)
{
    struct Idle
    {
        double cpuSeconds() const { return 0; }
    } idle;
    QImage canvas(kColumns * 170, (kSources / kColumns + 1) * 90, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    std::vector<QImage> images;
    for (const auto& frame : frames.frames) {
        images.emplace_back(frame->getBuffer()->data(), frame->getWidth(), frame->getHeight(),
                            frame->stride(), QImage::Format_RGBA8888);
    }
    uint64_t drawn = 0;
    uint64_t turn = 0;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(static_cast<int>(1000.0 / kFps));
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QPainter painter(&canvas);
        for (int source = 0; source < kSources; ++source) {
            const int thread = source / kSourcesPerThread;
            const QImage& image = images[static_cast<std::size_t>(thread * 2) + turn % 2];
            painter.drawImage(QRect(source % kColumns * 170, source / kColumns * 90, kPreviewWidth,
                                    kPreviewHeight),
                              image);
            ++drawn;
        }
        ++turn;
    });
    timer.start();
    return measure(
        options, idle, [&drawn] { return drawn; }, nullptr);
}

std::vector<IInputSourceMgr::ResourcePtr> makeResources(int box)
{
    std::vector<IInputSourceMgr::ResourcePtr> resources;
    for (int index = 0; index < kTilesPerBox; ++index) {
        const auto id = static_cast<uint64_t>(box * kTilesPerBox + index + 1);
        const std::string name = "Stream " + std::to_string(id);
        auto resource = std::make_shared<quandel::resource::ValueResource>(
            id, EnResourceType::NetworkStream, name);
        zq::mediacore::MetaValues values;
        values.resourceType = EnResourceType::NetworkStream;
        values.name = name;
        values.address = "rtsp://192.0.2.1/" + std::to_string(id);
        values.resolutionText = "1920*1080";
        values.frameRate = kFps;
        resource->setMeta(std::make_shared<zq::mediacore::ValueMeta>(std::move(values)));
        resources.push_back(std::move(resource));
    }
    return resources;
}

// The window of four boxes, each bound to a manager on a real runtime, as a host has them.
struct Scene
{
    explicit Scene(bool shown = true)
    {
        window.resize(kWindowWidth, kWindowHeight);
        auto* const layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        for (int index = 0; index < kBoxes; ++index) {
            managers.push_back(std::make_shared<FakeInputSourceMgr>(&runtime));
            auto* const box = new InputSourceBox(&window);
            box->setResourceType(EnResourceType::NetworkStream);
            box->setLoadingPath(vexa::bench::defaultLoadingAnimation());
            box->setZQRuntime(&runtime);
            box->setInputSourceMgr(managers.back());
            layout->addWidget(box);
            boxes.push_back(box);
        }
        layout->addStretch(1);
        if (shown) {
            window.show();
        }
    }

    ~Scene()
    {
        for (InputSourceBox* box : boxes) {
            box->unsetInputSourceMgr();
        }
    }

    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    static uint64_t idOf(int source) { return static_cast<uint64_t>(source + 1); }
    InputSourceBox* boxOf(int source) const
    {
        return boxes[static_cast<std::size_t>(source / kTilesPerBox)];
    }

    // Adds the tiles, takes them online and opens their previews, through the managers'
    // notifications. False when the tiles did not get there.
    bool populate(bool shown = true)
    {
        for (int index = 0; index < kBoxes; ++index) {
            const auto resources = makeResources(index);
            std::map<uint64_t, bool> online;
            std::vector<STInputSource> previewed;
            for (const auto& resource : resources) {
                online[resource->getId()] = true;
                STInputSource info;
                info.id = resource->getId();
                info.sourceType = kStreamType;
                info.preview = true;
                previewed.push_back(info);
            }
            managers[static_cast<std::size_t>(index)]->fireOnRuntime(
                [&](FakeInputSourceMgr& manager) {
                    manager.signalResourcesAdded(resources, {});
                    manager.signalOnlineStatusChanged(online, kStreamType);
                    manager.signalPreviewedChanged(previewed);
                });
        }
        return processEventsUntil([this, shown] {
            for (int source = 0; source < kSources; ++source) {
                const InputSourceItem* const item = boxOf(source)->findItem(idOf(source));
                if (item == nullptr || !item->isOnline() || !item->isPreviewing() ||
                    (shown && !item->isVisible())) {
                    return false;
                }
                const auto* const surface = item->findChild<DiplayWind*>();
                if (surface == nullptr || (shown && !surface->isVisible())) {
                    return false;
                }
            }
            return true;
        });
    }

    void watchPaints(PaintCounter& counter)
    {
        for (QWidget* widget : window.findChildren<QWidget*>()) {
            counter.watch(widget, qobject_cast<DiplayWind*>(widget) != nullptr);
        }
    }

    quandel::ZQRuntime runtime;
    std::vector<std::shared_ptr<FakeInputSourceMgr>> managers;
    QWidget window;
    std::vector<InputSourceBox*> boxes;
};

// The previews as a host runs them.
Sample measureLive(const Options& options, const FrameSet& frames, bool* ok)
{
    auto scene = std::make_unique<Scene>();
    if (!scene->populate()) {
        *ok = false;
        return {};
    }
    PaintCounter paints;
    scene->watchPaints(paints);
    Scene* const target = scene.get();
    Sample sample;
    {
        FrameThreads threads(frames, [target](int, int source, const zq::mediacore::IFrame& frame) {
            target->boxOf(source)->updateFrame(Scene::idOf(source), &frame);
        });
        sample = measure(
            options, threads, [&threads] { return threads.framesHandedIn(); }, &paints);
    }
    scene.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    return sample;
}

// In a process of its own, started for the purpose, as a host starts: milliseconds from the
// start of main() until the window, empty or holding 64 tiles, has finished its first paint.
int firstPaintChild(bool withTiles, const QElapsedTimer& sinceStart)
{
    Scene scene(false);
    if (withTiles && !scene.populate(false)) {
        return 1;
    }
    struct FirstPaint : QObject
    {
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::Paint && !painted) {
                painted = true;
                // Runs once the pass that paints the window and everything in it is over.
                QTimer::singleShot(0, this, [this] { done = true; });
            }
            return false;
        }
        bool painted = false;
        bool done = false;
    } filter;
    scene.window.installEventFilter(&filter);
    scene.window.show();
    if (!processEventsUntil([&filter] { return filter.done; })) {
        return 1;
    }
    std::printf("%.3f\n", static_cast<double>(sinceStart.nsecsElapsed()) * 1e-6);
    return 0;
}

// Milliseconds the first paint took in a fresh process; negative when it failed.
double timeToFirstPaint(const char* program, bool withTiles)
{
    QProcess child;
    child.start(QString::fromLocal8Bit(program),
                {QStringLiteral("--first-paint-child=%1").arg(withTiles ? 1 : 0)});
    if (!child.waitForFinished(60000) || child.exitCode() != 0) {
        return -1;
    }
    bool parsed = false;
    const double ms =
        QString::fromLatin1(child.readAllStandardOutput()).trimmed().toDouble(&parsed);
    return parsed ? ms : -1;
}

void printRatio(const std::string& what, double measured, double baseline, double target,
                const std::string& unit)
{
    const double ratio = measured / baseline;
    std::printf("ratio  %s = %.2f  (%s; target <= %.2f: %s)\n", what.c_str(), ratio, unit.c_str(),
                target, ratio <= target ? "met" : "MISSED");
}

Options parseOptions(int argc, char** argv)
{
    Options options;
    for (int index = 1; index < argc; ++index) {
        const std::string argument = argv[index];
        const std::string repetitions = "--benchmark_repetitions=";
        const std::string minTime = "--benchmark_min_time=";
        const std::string child = "--first-paint-child=";
        const std::string filter = "--benchmark_filter=";
        if (argument.rfind(filter, 0) == 0) {
            options.filter = argument.substr(filter.size());
        } else if (argument.rfind(child, 0) == 0) {
            options.firstPaintChild = std::atoi(argument.c_str() + child.size());
        } else if (argument.rfind(repetitions, 0) == 0) {
            options.repetitions = std::max(1, std::atoi(argument.c_str() + repetitions.size()));
        } else if (argument.rfind(minTime, 0) == 0 &&
                   std::atof(argument.c_str() + minTime.size()) < 0.1) {
            options.warmUp = std::chrono::milliseconds(200);
            options.window = std::chrono::milliseconds(300);
        }
    }
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    vexa::bench::preferOffscreenPlatform();
    QApplication application(argc, argv);
    const Options options = parseOptions(argc, argv);
    const QString sheet = vexa::bench::defaultThemeStyleSheet();
    if (sheet.isEmpty()) {
        std::fprintf(stderr, "error: the default theme was not found\n");
        return 1;
    }
    application.setStyleSheet(sheet);
    if (options.firstPaintChild >= 0) {
        return firstPaintChild(options.firstPaintChild == 1, sinceStart);
    }
    const std::string platform = QGuiApplication::platformName().toStdString();
    std::printf("bench_livepreview on the %s platform, %d sources at %.0f fps from %d threads, "
                "%d repetitions of %lld ms\n",
                platform.c_str(), kSources, kFps, kFrameThreads, options.repetitions,
                static_cast<long long>(options.window.count()));

    bool ok = true;
    struct Size
    {
        int width;
        int height;
        double guiTarget;
    };
    for (const Size size : {Size{1920, 1080, 1.0}, Size{480, 270, 1.5}}) {
        const FrameSet frames(size.width, size.height);
        std::map<std::string, std::vector<Sample>> samples;
        const std::string label = std::to_string(size.width) + "x" + std::to_string(size.height);
        for (int repetition = 0; repetition < options.repetitions; ++repetition) {
            if (options.selects("memcpy/" + label)) {
                samples["memcpy"].push_back(measureMemcpy(options, frames));
            }
            if (options.selects("drawImage/" + label)) {
                samples["drawImage"].push_back(measureDrawImage(options, frames));
            }
            if (options.selects("live/" + label)) {
                samples["live"].push_back(measureLive(options, frames, &ok));
            }
        }
        const auto med = [&samples](const std::string& name, double Sample::*field) {
            std::vector<double> values;
            for (const Sample& sample : samples[name]) {
                values.push_back(sample.*field);
            }
            return median(values);
        };
        for (const std::string name : {"memcpy", "drawImage", "live"}) {
            if (samples[name].empty()) {
                continue;
            }
            std::printf("%-10s %s %s: GUI %.3f core (%.1f us/frame), frame threads %.3f core "
                        "(%.1f us/frame), %.0f frames/s, surface paints/frame %.2f, widget "
                        "paints/frame %.2f, RSS %.0f MB\n",
                        name.c_str(), label.c_str(), platform.c_str(), med(name, &Sample::guiCores),
                        med(name, &Sample::guiCpuPerFrame) * 1e6, med(name, &Sample::frameCores),
                        med(name, &Sample::frameCpuPerFrame) * 1e6,
                        med(name, &Sample::framesPerSecond),
                        med(name, &Sample::surfacePaintsPerFrame),
                        med(name, &Sample::widgetPaintsPerFrame), med(name, &Sample::residentMb));
        }
        if (samples["live"].empty() || samples["memcpy"].empty() || samples["drawImage"].empty()) {
            continue;
        }
        printRatio("livepreview " + label + " " + platform + " GUI / bare drawImage",
                   med("live", &Sample::guiCpuPerFrame), med("drawImage", &Sample::guiCpuPerFrame),
                   size.guiTarget, "GUI-thread CPU per frame");
        printRatio("livepreview " + label + " " + platform + " frame threads / bare memcpy",
                   med("live", &Sample::frameCpuPerFrame), med("memcpy", &Sample::frameCpuPerFrame),
                   1.1, "frame-thread CPU per frame");
        printRatio("livepreview " + label + " " + platform + " surface paints per frame / 1",
                   med("live", &Sample::surfacePaintsPerFrame), 1.0, 1.0, "paint events");
        std::fflush(stdout);
    }

    std::vector<double> empty;
    std::vector<double> full;
    for (int repetition = 0; repetition < options.repetitions && options.selects("firstpaint");
         ++repetition) {
        empty.push_back(timeToFirstPaint(argv[0], false));
        full.push_back(timeToFirstPaint(argv[0], true));
        ok = ok && empty.back() >= 0 && full.back() >= 0;
    }
    if (empty.empty()) {
        return ok ? 0 : 1;
    }
    std::printf("first paint %s: empty window %.1f ms, with %d tiles %.1f ms\n", platform.c_str(),
                median(empty), kSources, median(full));
    printRatio("livepreview first paint " + platform + " 64 tiles / empty", median(full),
               median(empty), 2.0, "ms from main() to the end of the first paint");
    std::fflush(stdout);
    if (!ok) {
        std::fprintf(stderr, "error: the tiles did not get online and previewed\n");
        return 1;
    }
    return 0;
}
