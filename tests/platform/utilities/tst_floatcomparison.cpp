// SPDX-License-Identifier: MIT
#include <zqctuils/floatcomparison.h>

#include <QTest>

#include <limits>

using zqctuils::FloatComparison;

class TestFloatComparison : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equal_data();
    void equal();
    void isSymmetric_data();
    void isSymmetric();
    void nanEqualsNothing_data();
    void nanEqualsNothing();
};

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double maxDouble = std::numeric_limits<double>::max();
constexpr double minNormal = std::numeric_limits<double>::min();

void addComparisonRows()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<bool>("expected");

    QTest::newRow("same value") << 25.0 << 25.0 << true;
    QTest::newRow("zero") << 0.0 << 0.0 << true;
    QTest::newRow("signed zeros") << 0.0 << -0.0 << true;
    QTest::newRow("float and double frame rate") << double(59.94f) << 59.94 << true;
    QTest::newRow("float and double 29.97") << double(29.97f) << 29.97 << true;
    QTest::newRow("29.97 against 30") << 29.97 << 30.0 << false;
    QTest::newRow("59.94 against 60") << 59.94 << 60.0 << false;
    QTest::newRow("sum of tenths") << 0.1 + 0.2 << 0.3 << true;
    QTest::newRow("within relative tolerance") << 1000.0 << 1000.0009 << true;
    QTest::newRow("beyond relative tolerance") << 1000.0 << 1000.0011 << false;
    QTest::newRow("large values close") << 1e12 << 1e12 + 1e5 << true;
    QTest::newRow("large values apart") << 1e12 << 1e12 + 1e7 << false;
    QTest::newRow("near zero within absolute") << 1e-10 << -1e-10 << true;
    QTest::newRow("zero and tiny") << 0.0 << 5e-10 << true;
    QTest::newRow("zero and beyond absolute") << 0.0 << 2e-9 << false;
    QTest::newRow("smallest normal and zero") << minNormal << 0.0 << true;
    QTest::newRow("negatives equal") << -59.94 << double(-59.94f) << true;
    QTest::newRow("negatives apart") << -29.97 << -30.0 << false;
    QTest::newRow("opposite signs") << 1.0 << -1.0 << false;
    QTest::newRow("largest finite") << maxDouble << maxDouble << true;
    QTest::newRow("largest finite opposite signs") << maxDouble << -maxDouble << false;
    QTest::newRow("infinity itself") << inf << inf << true;
    QTest::newRow("negative infinity itself") << -inf << -inf << true;
    QTest::newRow("infinities of opposite sign") << inf << -inf << false;
    QTest::newRow("infinity and largest finite") << inf << maxDouble << false;
    QTest::newRow("infinity and value") << inf << 1.0 << false;
}

} // namespace

void TestFloatComparison::equal_data()
{
    addComparisonRows();
}

void TestFloatComparison::equal()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(bool, expected);
    QCOMPARE(FloatComparison::equal(a, b), expected);
}

void TestFloatComparison::isSymmetric_data()
{
    addComparisonRows();
}

void TestFloatComparison::isSymmetric()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(bool, expected);
    QCOMPARE(FloatComparison::equal(b, a), expected);
}

void TestFloatComparison::nanEqualsNothing_data()
{
    QTest::addColumn<double>("other");

    QTest::newRow("zero") << 0.0;
    QTest::newRow("value") << 59.94;
    QTest::newRow("infinity") << inf;
    QTest::newRow("negative infinity") << -inf;
    QTest::newRow("nan") << std::numeric_limits<double>::quiet_NaN();
}

void TestFloatComparison::nanEqualsNothing()
{
    QFETCH(double, other);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QVERIFY(!FloatComparison::equal(nan, other));
    QVERIFY(!FloatComparison::equal(other, nan));
    QVERIFY(!FloatComparison::equal(nan, nan));
}

QTEST_GUILESS_MAIN(TestFloatComparison)
#include "tst_floatcomparison.moc"
