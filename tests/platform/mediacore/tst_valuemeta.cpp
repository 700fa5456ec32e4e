// SPDX-License-Identifier: MIT
#include <zq/mediacore/valuemeta.h>

#include <vexainputsourcewidget/testing/runtogether.h>

#include <QtTest>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

using quandel::CaptResolutionsInfo;
using quandel::resource::EnResourceType;
using zq::mediacore::IMeta;
using zq::mediacore::MetaValues;
using zq::mediacore::Thumbnail;
using zq::mediacore::ValueMeta;
using zq::mediacore::WebTab;

namespace {

Thumbnail thumbnailOf(int width, int height, uint8_t shade)
{
    Thumbnail thumbnail;
    thumbnail.width = width;
    thumbnail.height = height;
    thumbnail.rgba.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4,
                          shade);
    return thumbnail;
}

// Every field differs from its default and from the other set, so a getter that reports the
// wrong field or a stale value is caught.
MetaValues captureDeviceValues()
{
    MetaValues values;
    values.resourceType = EnResourceType::LocalCaptureDevice;
    values.name = "Capture card \xe2\x84\x96 1";
    values.address = "/dev/video0";
    values.resolutionText = "1920*1080";
    values.frameRate = 59.94;
    values.thumbnail = thumbnailOf(4, 3, 0x40);
    values.lost = true;
    values.captResolutions = {{1920, 1080, 59.94f, "NV12"}, {1280, 720, 30.0f, "YUY2"}};
    values.currentCaptResolution = {1920, 1080, 59.94f, "NV12"};
    values.captResolutionMode = 1;
    values.webMode = 1;
    values.webTabs = {{"Scores", "https://example.org/scores", 1},
                      {"Ticker", "https://example.org/ticker", 2}};
    values.webCurrentTabIndex = 2;
    return values;
}

MetaValues webPageValues()
{
    MetaValues values;
    values.resourceType = EnResourceType::WebPage;
    values.name = "A web page whose name is long enough not to fit in a small string buffer";
    values.address = "https://example.org/overlay";
    values.resolutionText = "1280*720";
    values.frameRate = 30.0;
    values.thumbnail = thumbnailOf(2, 2, 0x80);
    values.lost = false;
    values.captResolutions = {{640, 480, 25.0f, "MJPG"}};
    values.currentCaptResolution = {640, 480, 25.0f, "MJPG"};
    values.captResolutionMode = 0;
    values.webMode = 0;
    values.webTabs = {{"Overlay", "https://example.org/overlay", 1}};
    values.webCurrentTabIndex = 1;
    return values;
}

bool sameThumbnail(const Thumbnail& a, const Thumbnail& b)
{
    return a.width == b.width && a.height == b.height && a.rgba == b.rgba;
}

bool sameValues(const MetaValues& a, const MetaValues& b)
{
    return a.resourceType == b.resourceType && a.name == b.name && a.address == b.address &&
           a.resolutionText == b.resolutionText && a.frameRate == b.frameRate &&
           sameThumbnail(a.thumbnail, b.thumbnail) && a.lost == b.lost &&
           a.captResolutions == b.captResolutions &&
           a.currentCaptResolution == b.currentCaptResolution &&
           a.captResolutionMode == b.captResolutionMode && a.webMode == b.webMode &&
           a.webTabs == b.webTabs && a.webCurrentTabIndex == b.webCurrentTabIndex;
}

// Reads every field through the interface, one getter each, as a consumer would.
MetaValues readThroughGetters(const IMeta& meta)
{
    MetaValues read;
    read.resourceType = meta.getResourceType();
    read.name = meta.getName();
    read.address = meta.getAddress();
    read.resolutionText = meta.getResolutionText();
    read.frameRate = meta.getFrameRate();
    read.thumbnail = meta.getThumbnail();
    read.lost = meta.getLost();
    read.captResolutions = meta.getCaptResolutions();
    read.currentCaptResolution = meta.getCurrentCaptResolution();
    read.captResolutionMode = meta.getCaptResolutionMode();
    read.webMode = meta.getWebMode();
    read.webTabs = meta.getWebTabs();
    read.webCurrentTabIndex = meta.getWebCurrentTabIndex();
    return read;
}

} // namespace

class TestValueMeta : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsTheDefaultsWhenGivenNothing();
    void reportsEveryFieldThroughItsGetter();
    void returnsACopyOfItsValues();
    void replacesEveryValue();
    void getterResultsAreIndependentCopies();
    void toleratesConcurrentWritersAndReaders();
};

void TestValueMeta::reportsTheDefaultsWhenGivenNothing()
{
    const ValueMeta meta;

    QVERIFY(meta.getResourceType() == EnResourceType::Unassigned);
    QVERIFY(meta.getName().empty());
    QVERIFY(meta.getAddress().empty());
    QVERIFY(meta.getResolutionText().empty());
    QCOMPARE(meta.getFrameRate(), 0.0);
    QVERIFY(meta.getThumbnail().rgba.empty());
    QVERIFY(!meta.getThumbnail().isValid());
    QCOMPARE(meta.getLost(), false);
    QVERIFY(meta.getCaptResolutions().empty());
    QVERIFY(meta.getCurrentCaptResolution() == CaptResolutionsInfo{});
    QCOMPARE(meta.getCaptResolutionMode(), 0);
    QCOMPARE(meta.getWebMode(), 0);
    QVERIFY(meta.getWebTabs().empty());
    QCOMPARE(meta.getWebCurrentTabIndex(), 1);
}

void TestValueMeta::reportsEveryFieldThroughItsGetter()
{
    const MetaValues expected = captureDeviceValues();
    const ValueMeta meta(expected);
    const IMeta& asInterface = meta;

    QVERIFY(asInterface.getResourceType() == EnResourceType::LocalCaptureDevice);
    QCOMPARE(asInterface.getName(), expected.name);
    QCOMPARE(asInterface.getAddress(), std::string("/dev/video0"));
    QCOMPARE(asInterface.getResolutionText(), std::string("1920*1080"));
    QCOMPARE(asInterface.getFrameRate(), 59.94);
    QVERIFY(sameThumbnail(asInterface.getThumbnail(), expected.thumbnail));
    QVERIFY(asInterface.getThumbnail().isValid());
    QCOMPARE(asInterface.getLost(), true);
    QCOMPARE(asInterface.getCaptResolutions().size(), std::size_t{2});
    QVERIFY(asInterface.getCaptResolutions() == expected.captResolutions);
    QVERIFY(asInterface.getCurrentCaptResolution() == expected.currentCaptResolution);
    QCOMPARE(asInterface.getCaptResolutionMode(), 1);
    QCOMPARE(asInterface.getWebMode(), 1);
    QVERIFY(asInterface.getWebTabs() == expected.webTabs);
    QCOMPARE(asInterface.getWebCurrentTabIndex(), 2);

    QVERIFY(sameValues(readThroughGetters(meta), expected));
}

void TestValueMeta::returnsACopyOfItsValues()
{
    const ValueMeta meta(captureDeviceValues());

    MetaValues copy = meta.values();
    QVERIFY(sameValues(copy, captureDeviceValues()));

    copy.name = "changed in the copy only";
    copy.webTabs.clear();
    QVERIFY(sameValues(meta.values(), captureDeviceValues()));
}

void TestValueMeta::replacesEveryValue()
{
    ValueMeta meta(captureDeviceValues());

    meta.setValues(webPageValues());

    QVERIFY(sameValues(meta.values(), webPageValues()));
    QVERIFY(sameValues(readThroughGetters(meta), webPageValues()));

    meta.setValues({});
    QVERIFY(sameValues(readThroughGetters(meta), MetaValues{}));
}

void TestValueMeta::getterResultsAreIndependentCopies()
{
    ValueMeta meta(captureDeviceValues());
    const Thumbnail thumbnail = meta.getThumbnail();
    const std::vector<WebTab> tabs = meta.getWebTabs();

    meta.setValues(webPageValues());

    QVERIFY(sameThumbnail(thumbnail, captureDeviceValues().thumbnail));
    QVERIFY(tabs == captureDeviceValues().webTabs);
}

void TestValueMeta::toleratesConcurrentWritersAndReaders()
{
    const MetaValues first = captureDeviceValues();
    const MetaValues second = webPageValues();
    ValueMeta meta(first);

    constexpr int iterations = 1000;
    std::atomic<int> wrongFields{0};
    std::atomic<int> tornSnapshots{0};
    std::vector<std::function<void()>> bodies;
    for (int writer = 0; writer < 2; ++writer) {
        bodies.emplace_back([&, writer] {
            for (int i = 0; i < iterations; ++i) {
                meta.setValues((i + writer) % 2 == 0 ? first : second);
            }
        });
    }
    for (int reader = 0; reader < 2; ++reader) {
        bodies.emplace_back([&] {
            for (int i = 0; i < iterations; ++i) {
                // Single getters may mix the two sets between calls, but each field must be
                // one of the two values as a whole.
                const MetaValues mixed = readThroughGetters(meta);
                const auto oneOf = [&](auto field) {
                    return mixed.*field == first.*field || mixed.*field == second.*field;
                };
                const bool fieldsWhole =
                    oneOf(&MetaValues::resourceType) && oneOf(&MetaValues::name) &&
                    oneOf(&MetaValues::address) && oneOf(&MetaValues::resolutionText) &&
                    oneOf(&MetaValues::frameRate) && oneOf(&MetaValues::lost) &&
                    oneOf(&MetaValues::captResolutions) &&
                    oneOf(&MetaValues::currentCaptResolution) &&
                    oneOf(&MetaValues::captResolutionMode) && oneOf(&MetaValues::webMode) &&
                    oneOf(&MetaValues::webTabs) && oneOf(&MetaValues::webCurrentTabIndex) &&
                    (sameThumbnail(mixed.thumbnail, first.thumbnail) ||
                     sameThumbnail(mixed.thumbnail, second.thumbnail));
                if (!fieldsWhole) {
                    ++wrongFields;
                }
                // values() is one read under the lock, so it is never a mixture.
                const MetaValues snapshot = meta.values();
                if (!sameValues(snapshot, first) && !sameValues(snapshot, second)) {
                    ++tornSnapshots;
                }
            }
        });
    }

    vexa::testing::runTogether(bodies);

    QCOMPARE(wrongFields.load(), 0);
    QCOMPARE(tornSnapshots.load(), 0);
    meta.setValues(second);
    QVERIFY(sameValues(readThroughGetters(meta), second));
}

QTEST_GUILESS_MAIN(TestValueMeta)
#include "tst_valuemeta.moc"
