// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include <quandel/resource/valueresource.h>
#include <zq/mediacore/valuemeta.h>

#include <QtTest>

#include <cstdint>
#include <map>
#include <thread>
#include <vector>

// The slots below spell their argument types the short way the library's slots do.
using quandel::resource::IResource;
using vexa::STResourceRenamedModel;
using vexa::inputsource::MetaQueryResult;
using vexa::inputsource::STInputSource;
using vexa::inputsource::STWebOperation;

using OnlineMap = std::map<uint64_t, bool>;
using OnlineTimeMap = std::map<uint64_t, int>;

namespace {

// Receives queued calls whose argument types are spelled the way the library spells them.
class Receiver : public QObject
{
    Q_OBJECT

public:
    int calls = 0;
    uint64_t lastId = 0;
    std::shared_ptr<quandel::resource::IResource> lastResource;
    quandel::CaptResolutionsInfo lastInfo;
    std::vector<STInputSource> lastSources;
    vexa::STResourceRenamedModel lastModel;
    std::vector<uint64_t> lastIds;
    STWebOperation lastOperation;
    QVariant lastVariant;

public Q_SLOTS:
    void addItem(uint64_t id, std::shared_ptr<IResource> resource)
    {
        ++calls;
        lastId = id;
        lastResource = std::move(resource);
    }
    void resolutionError(const quandel::CaptResolutionsInfo& info)
    {
        ++calls;
        lastInfo = info;
    }
    void previewedItems(const std::vector<STInputSource>& sources)
    {
        ++calls;
        lastSources = sources;
    }
    void renameItem(const STResourceRenamedModel& model)
    {
        ++calls;
        lastModel = model;
    }
    void deleteItems(const std::vector<uint64_t> ids)
    {
        ++calls;
        lastIds = ids;
    }
    void doWebInfoChanged(const STWebOperation& operation)
    {
        ++calls;
        lastOperation = operation;
    }
    void onlineTimeUpdateUi(QVariant value)
    {
        ++calls;
        lastVariant = std::move(value);
    }
};

} // namespace

class TestInputSourceMetaTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyNameIsKnown_data();
    void everyNameIsKnown();
    void namesResolveToTheirTypes();
    void registeringAgainFromSeveralThreadsIsHarmless();
    void queuedCallsCarryTheRecords();
    void mapsInAVariantCanBeIterated();
    void recordsRideInVariants();
};

void TestInputSourceMetaTypes::initTestCase()
{
    vexa::inputsource::registerMetaTypes();
}

void TestInputSourceMetaTypes::everyNameIsKnown_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name :
         {"STInputSource", "STResourceRenamedModel", "STWebOperation",
          "quandel::CaptResolutionsInfo", "std::vector<STInputSource>",
          "std::vector<STResourceRenamedModel>", "std::shared_ptr<IResource>",
          "std::shared_ptr<zq::mediacore::IMeta>",
          "std::tuple<std::shared_ptr<zq::mediacore::IMeta>,bool>", "uint64_t",
          "std::vector<uint64_t>", "std::shared_ptr<Resource>", "std::map<uint64_t, bool>",
          "std::map<uint64_t, int>", "const std::vector<uint64_t>", "const STResourceRenamedModel&",
          "const std::vector<STInputSource>&", "const STInputSource&",
          "const quandel::CaptResolutionsInfo&"}) {
        QTest::newRow(name) << QByteArray(name);
    }
}

void TestInputSourceMetaTypes::everyNameIsKnown()
{
    QFETCH(QByteArray, name);
    const QByteArray normalized = QMetaObject::normalizedType(name.constData());
    QVERIFY2(QMetaType::type(normalized.constData()) != QMetaType::UnknownType,
             normalized.constData());
}

void TestInputSourceMetaTypes::namesResolveToTheirTypes()
{
    QCOMPARE(QMetaType::type("STInputSource"), qMetaTypeId<STInputSource>());
    QCOMPARE(QMetaType::type("std::vector<STInputSource>"),
             qMetaTypeId<std::vector<STInputSource>>());
    QCOMPARE(QMetaType::type("STResourceRenamedModel"),
             qMetaTypeId<vexa::STResourceRenamedModel>());
    QCOMPARE(QMetaType::type("std::vector<STResourceRenamedModel>"),
             qMetaTypeId<std::vector<vexa::STResourceRenamedModel>>());
    QCOMPARE(QMetaType::type("STWebOperation"), qMetaTypeId<STWebOperation>());
    QCOMPARE(QMetaType::type("quandel::CaptResolutionsInfo"),
             qMetaTypeId<quandel::CaptResolutionsInfo>());
    QCOMPARE(QMetaType::type("std::shared_ptr<IResource>"),
             qMetaTypeId<std::shared_ptr<quandel::resource::IResource>>());
    QCOMPARE(QMetaType::type("std::shared_ptr<Resource>"),
             qMetaTypeId<std::shared_ptr<quandel::resource::IResource>>());
    QCOMPARE(QMetaType::type("std::shared_ptr<zq::mediacore::IMeta>"),
             qMetaTypeId<std::shared_ptr<zq::mediacore::IMeta>>());
    QCOMPARE(QMetaType::type("std::tuple<std::shared_ptr<zq::mediacore::IMeta>,bool>"),
             qMetaTypeId<MetaQueryResult>());
    QCOMPARE(QMetaType::type("uint64_t"), qMetaTypeId<uint64_t>());
    QCOMPARE(QMetaType::type("std::vector<uint64_t>"), qMetaTypeId<std::vector<uint64_t>>());
    QCOMPARE(QMetaType::type(QMetaObject::normalizedType("std::map<uint64_t, bool>")),
             qMetaTypeId<OnlineMap>());
    QCOMPARE(QMetaType::type(QMetaObject::normalizedType("std::map<uint64_t, int>")),
             qMetaTypeId<OnlineTimeMap>());
}

void TestInputSourceMetaTypes::registeringAgainFromSeveralThreadsIsHarmless()
{
    const int before = QMetaType::type("STInputSource");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] { vexa::inputsource::registerMetaTypes(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    vexa::inputsource::registerMetaTypes();
    QCOMPARE(QMetaType::type("STInputSource"), before);
}

void TestInputSourceMetaTypes::queuedCallsCarryTheRecords()
{
    Receiver receiver;
    auto resource = std::make_shared<quandel::resource::ValueResource>(
        21, quandel::resource::EnResourceType::NdiSource, "NDI 1");
    const quandel::CaptResolutionsInfo info{1920, 1080, 59.94F, "NV12"};
    STInputSource previewed;
    previewed.id = 4;
    previewed.preview = true;
    const std::vector<STInputSource> sources{previewed};
    const vexa::STResourceRenamedModel model{4, "Renamed", {}, {}, 0};
    const std::vector<uint64_t> ids{1, 2, 3};
    STWebOperation operation;
    operation.code = STWebOperation::WebDescriptionChanged;
    operation.id = 8;
    const std::map<uint64_t, int> onlineTimes{{4, 10}, {5, 20}};

    // Posted from another thread, as the manager's handlers post from the runtime thread.
    std::vector<bool> posted;
    std::thread poster([&] {
        posted.push_back(QMetaObject::invokeMethod(&receiver, "addItem", Qt::QueuedConnection,
                                                   Q_ARG(uint64_t, 21),
                                                   Q_ARG(std::shared_ptr<IResource>, resource)));
        posted.push_back(
            QMetaObject::invokeMethod(&receiver, "resolutionError", Qt::QueuedConnection,
                                      Q_ARG(const quandel::CaptResolutionsInfo&, info)));
        posted.push_back(
            QMetaObject::invokeMethod(&receiver, "previewedItems", Qt::QueuedConnection,
                                      Q_ARG(const std::vector<STInputSource>&, sources)));
        posted.push_back(QMetaObject::invokeMethod(&receiver, "renameItem", Qt::QueuedConnection,
                                                   Q_ARG(const STResourceRenamedModel&, model)));
        posted.push_back(QMetaObject::invokeMethod(&receiver, "deleteItems", Qt::QueuedConnection,
                                                   Q_ARG(const std::vector<uint64_t>, ids)));
        posted.push_back(QMetaObject::invokeMethod(
            &receiver, "doWebInfoChanged", Qt::QueuedConnection, Q_ARG(STWebOperation, operation)));
        posted.push_back(
            QMetaObject::invokeMethod(&receiver, "onlineTimeUpdateUi", Qt::QueuedConnection,
                                      Q_ARG(QVariant, QVariant::fromValue(onlineTimes))));
    });
    poster.join();

    QVERIFY(posted == std::vector<bool>(7, true));
    QTRY_COMPARE(receiver.calls, 7);
    QCOMPARE(receiver.lastId, uint64_t(21));
    QVERIFY(receiver.lastResource == resource);
    QVERIFY(receiver.lastInfo == info);
    QCOMPARE(receiver.lastSources.size(), std::size_t(1));
    QCOMPARE(receiver.lastSources.front().preview, true);
    QCOMPARE(receiver.lastModel.name, std::string("Renamed"));
    QVERIFY(receiver.lastIds == ids);
    QCOMPARE(receiver.lastOperation.id, uint64_t(8));
    QVERIFY(receiver.lastVariant.value<OnlineTimeMap>() == onlineTimes);
}

void TestInputSourceMetaTypes::mapsInAVariantCanBeIterated()
{
    const std::map<uint64_t, bool> online{{1, true}, {2, false}};
    const QVariant variant = QVariant::fromValue(online);
    QVERIFY(variant.canConvert<QVariantMap>());
    const QAssociativeIterable iterable = variant.value<QAssociativeIterable>();
    QCOMPARE(iterable.size(), 2);
    std::map<uint64_t, bool> readBack;
    for (auto it = iterable.begin(); it != iterable.end(); ++it) {
        readBack[it.key().value<uint64_t>()] = it.value().toBool();
    }
    QVERIFY(readBack == online);

    const std::map<uint64_t, int> times{{7, 3600}};
    QCOMPARE(QVariant::fromValue(times).value<QAssociativeIterable>().size(), 1);
}

void TestInputSourceMetaTypes::recordsRideInVariants()
{
    const quandel::CaptResolutionsInfo info{1280, 720, 30.0F, "MJPG"};
    const QVariant variant = QVariant::fromValue(info);
    QVERIFY(variant.canConvert<quandel::CaptResolutionsInfo>());
    QVERIFY(variant.value<quandel::CaptResolutionsInfo>() == info);

    auto meta = std::make_shared<zq::mediacore::ValueMeta>();
    const QVariant query = QVariant::fromValue(MetaQueryResult{meta, true});
    QVERIFY(std::get<0>(query.value<MetaQueryResult>()) == meta);
}

QTEST_GUILESS_MAIN(TestInputSourceMetaTypes)
#include "tst_inputsourcemetatypes.moc"
