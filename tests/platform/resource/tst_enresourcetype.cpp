// SPDX-License-Identifier: MIT
#include <quandel/resource/enresourcetype.h>

#include <QtTest>

#include <cstdint>
#include <limits>
#include <type_traits>

using quandel::resource::EnResourceType;
using quandel::resource::toCode;

Q_DECLARE_METATYPE(quandel::resource::EnResourceType)

// Records and tiles carry the code, so it must be available at compile time and keep its width.
static_assert(std::is_same_v<std::underlying_type_t<EnResourceType>, int32_t>);
static_assert(toCode(EnResourceType::NdiSource) == 7);

class TestEnResourceType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namedKindsHaveTheHostsCodes_data();
    void namedKindsHaveTheHostsCodes();
    void hostKindsRoundTrip_data();
    void hostKindsRoundTrip();
};

void TestEnResourceType::namedKindsHaveTheHostsCodes_data()
{
    QTest::addColumn<EnResourceType>("type");
    QTest::addColumn<int>("code");

    QTest::newRow("NdiSource") << EnResourceType::NdiSource << 7;
    QTest::newRow("LocalCaptureDevice") << EnResourceType::LocalCaptureDevice << 8;
    QTest::newRow("WebPage") << EnResourceType::WebPage << 9;
    QTest::newRow("NetworkStream") << EnResourceType::NetworkStream << 13;
    QTest::newRow("Unassigned") << EnResourceType::Unassigned << 14;
}

void TestEnResourceType::namedKindsHaveTheHostsCodes()
{
    QFETCH(EnResourceType, type);
    QFETCH(int, code);

    QCOMPARE(toCode(type), code);
    QCOMPARE(static_cast<int32_t>(type), code);
    QVERIFY(static_cast<EnResourceType>(code) == type);
}

void TestEnResourceType::hostKindsRoundTrip_data()
{
    QTest::addColumn<int>("code");

    QTest::newRow("3") << 3;
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("1000") << 1000;
    QTest::newRow("max") << std::numeric_limits<int32_t>::max();
    QTest::newRow("min") << std::numeric_limits<int32_t>::min();
}

void TestEnResourceType::hostKindsRoundTrip()
{
    QFETCH(int, code);

    const auto type = static_cast<EnResourceType>(code);

    QCOMPARE(toCode(type), code);
    QCOMPARE(static_cast<int>(type), code);
    QVERIFY(type != EnResourceType::NdiSource);
    QVERIFY(type != EnResourceType::LocalCaptureDevice);
    QVERIFY(type != EnResourceType::WebPage);
    QVERIFY(type != EnResourceType::NetworkStream);
    QVERIFY(type != EnResourceType::Unassigned);
}

QTEST_GUILESS_MAIN(TestEnResourceType)
#include "tst_enresourcetype.moc"
