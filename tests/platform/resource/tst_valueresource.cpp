// SPDX-License-Identifier: MIT
#include <quandel/resource/valueresource.h>
#include <zq/mediacore/valuemeta.h>

#include <vexainputsourcewidget/testing/runtogether.h>

#include <QtTest>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using quandel::resource::EnResourceType;
using quandel::resource::IResource;
using quandel::resource::ValueResource;
using zq::mediacore::IMeta;
using zq::mediacore::MetaValues;
using zq::mediacore::ValueMeta;

namespace {

std::shared_ptr<ValueMeta> metaNamed(const std::string& name)
{
    MetaValues values;
    values.name = name;
    return std::make_shared<ValueMeta>(values);
}

// A meta whose destructor reads the resource that held it, as a host's cleanup code might.
class CallingBackMeta : public ValueMeta
{
public:
    CallingBackMeta(const ValueResource& resource, std::string& nameSeen)
        : m_resource(resource)
        , m_nameSeen(nameSeen)
    {}
    ~CallingBackMeta() override { m_nameSeen = m_resource.getName(); }

private:
    const ValueResource& m_resource;
    std::string& m_nameSeen;
};

} // namespace

class TestValueResource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsItsIdentity();
    void keepsUtf8NamesUnchanged();
    void answersThroughTheInterface();
    void hasNoMetaUntilSet();
    void sharesTheMetaItIsGiven();
    void replacesTheMeta();
    void clearsTheMetaWithAnEmptyPointer();
    void releasesItsMetaWhenDestroyed();
    void replacedMetaMayCallBackIntoTheResource();
    void renames();
    void renamingLeavesTheRestAlone();
    void toleratesConcurrentReadersAndWriters();
};

void TestValueResource::reportsItsIdentity()
{
    const ValueResource resource(0x1234'5678'9abc'def0ULL, EnResourceType::NetworkStream,
                                 "Studio feed");

    QCOMPARE(resource.getId(), uint64_t{0x1234'5678'9abc'def0ULL});
    QVERIFY(resource.getType() == EnResourceType::NetworkStream);
    QCOMPARE(resource.getName(), std::string("Studio feed"));
}

void TestValueResource::keepsUtf8NamesUnchanged()
{
    const std::string name = "Kamera \xc3\xbc\xc3\x9f \xe6\x91\x84\xe5\x83\x8f";
    const ValueResource resource(1, EnResourceType::LocalCaptureDevice, name);

    QCOMPARE(resource.getName(), name);
}

void TestValueResource::answersThroughTheInterface()
{
    auto meta = metaNamed("through the interface");
    auto concrete = std::make_shared<ValueResource>(77, EnResourceType::WebPage, "page");
    concrete->setMeta(meta);
    const std::shared_ptr<const IResource> resource = concrete;

    QCOMPARE(resource->getId(), uint64_t{77});
    QVERIFY(resource->getType() == EnResourceType::WebPage);
    QCOMPARE(resource->getName(), std::string("page"));
    QVERIFY(resource->getMeta() == meta);
}

void TestValueResource::hasNoMetaUntilSet()
{
    ValueResource resource(2, EnResourceType::NdiSource, "sender");

    QVERIFY(resource.getMeta() == nullptr);

    resource.setName("renamed");
    QVERIFY(resource.getMeta() == nullptr);
}

void TestValueResource::sharesTheMetaItIsGiven()
{
    ValueResource resource(3, EnResourceType::NdiSource, "sender");
    auto meta = metaNamed("before");

    resource.setMeta(meta);

    const std::shared_ptr<IMeta> got = resource.getMeta();
    QCOMPARE(got.get(), static_cast<IMeta*>(meta.get()));
    QCOMPARE(resource.getMeta().get(), got.get());

    // The same object, not a copy: what the host changes later is what readers see.
    MetaValues changed = meta->values();
    changed.name = "after";
    meta->setValues(changed);
    QCOMPARE(resource.getMeta()->getName(), std::string("after"));
}

void TestValueResource::replacesTheMeta()
{
    ValueResource resource(4, EnResourceType::NetworkStream, "stream");
    auto first = metaNamed("first");
    auto second = metaNamed("second");

    resource.setMeta(first);
    resource.setMeta(second);

    QCOMPARE(resource.getMeta().get(), static_cast<IMeta*>(second.get()));
    QCOMPARE(first.use_count(), 1L);
}

void TestValueResource::clearsTheMetaWithAnEmptyPointer()
{
    ValueResource resource(5, EnResourceType::WebPage, "page");
    auto meta = metaNamed("page meta");
    resource.setMeta(meta);
    QVERIFY(resource.getMeta() != nullptr);

    resource.setMeta(nullptr);

    QVERIFY(resource.getMeta() == nullptr);
    QCOMPARE(meta.use_count(), 1L);
}

void TestValueResource::releasesItsMetaWhenDestroyed()
{
    std::weak_ptr<ValueMeta> watched;
    {
        ValueResource resource(6, EnResourceType::NdiSource, "sender");
        auto meta = metaNamed("owned by the resource only");
        watched = meta;
        resource.setMeta(std::move(meta));
        QVERIFY(!watched.expired());
    }
    QVERIFY(watched.expired());
}

void TestValueResource::replacedMetaMayCallBackIntoTheResource()
{
    ValueResource resource(10, EnResourceType::WebPage, "page");
    std::string nameSeen;
    resource.setMeta(std::make_shared<CallingBackMeta>(resource, nameSeen));

    // The resource holds the only reference, so the old meta dies inside setMeta.
    resource.setMeta(nullptr);

    QCOMPARE(nameSeen, std::string("page"));
}

void TestValueResource::renames()
{
    ValueResource resource(7, EnResourceType::LocalCaptureDevice, "old");

    resource.setName("new");
    QCOMPARE(resource.getName(), std::string("new"));

    resource.setName("");
    QCOMPARE(resource.getName(), std::string());
}

void TestValueResource::renamingLeavesTheRestAlone()
{
    ValueResource resource(8, EnResourceType::LocalCaptureDevice, "old");
    auto meta = metaNamed("device meta");
    resource.setMeta(meta);

    resource.setName("new");

    QCOMPARE(resource.getId(), uint64_t{8});
    QVERIFY(resource.getType() == EnResourceType::LocalCaptureDevice);
    QCOMPARE(resource.getMeta().get(), static_cast<IMeta*>(meta.get()));
}

void TestValueResource::toleratesConcurrentReadersAndWriters()
{
    // Long names live on the heap, so a torn or unguarded write is visible to the sanitizers
    // and to the comparisons below.
    const std::string initialName(64, 'i');
    const std::string nameA(80, 'a');
    const std::string nameB(96, 'b');
    auto metaA = metaNamed("meta A");
    auto metaB = metaNamed("meta B");
    ValueResource resource(9, EnResourceType::NdiSource, initialName);

    constexpr int iterations = 2000;
    std::atomic<int> wrongNames{0};
    std::atomic<int> wrongMetas{0};
    std::atomic<int> wrongIdentities{0};

    std::vector<std::function<void()>> bodies;
    for (int writer = 0; writer < 2; ++writer) {
        bodies.emplace_back([&, writer] {
            for (int i = 0; i < iterations; ++i) {
                const bool even = (i + writer) % 2 == 0;
                resource.setName(even ? nameA : nameB);
                if (i % 3 == 0) {
                    resource.setMeta(nullptr);
                } else {
                    resource.setMeta(even ? metaA : metaB);
                }
            }
        });
    }
    for (int reader = 0; reader < 2; ++reader) {
        bodies.emplace_back([&] {
            for (int i = 0; i < iterations; ++i) {
                const std::string name = resource.getName();
                if (name != initialName && name != nameA && name != nameB) {
                    ++wrongNames;
                }
                const std::shared_ptr<IMeta> meta = resource.getMeta();
                if (meta != nullptr) {
                    if (meta != metaA && meta != metaB) {
                        ++wrongMetas;
                    } else if (meta->getName() != "meta A" && meta->getName() != "meta B") {
                        ++wrongMetas;
                    }
                }
                if (resource.getId() != 9 || resource.getType() != EnResourceType::NdiSource) {
                    ++wrongIdentities;
                }
            }
        });
    }

    vexa::testing::runTogether(bodies);

    QCOMPARE(wrongNames.load(), 0);
    QCOMPARE(wrongMetas.load(), 0);
    QCOMPARE(wrongIdentities.load(), 0);

    resource.setName("settled");
    resource.setMeta(metaB);
    QCOMPARE(resource.getName(), std::string("settled"));
    QCOMPARE(resource.getMeta().get(), static_cast<IMeta*>(metaB.get()));
    resource.setMeta(nullptr);
    QCOMPARE(metaA.use_count(), 1L);
    QCOMPARE(metaB.use_count(), 1L);
}

QTEST_GUILESS_MAIN(TestValueResource)
#include "tst_valueresource.moc"
