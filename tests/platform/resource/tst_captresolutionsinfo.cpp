// SPDX-License-Identifier: MIT
#include <quandel/captresolutionsinfo.h>

#include <QtTest>

#include <cmath>
#include <limits>

using quandel::CaptResolutionsInfo;

namespace {

CaptResolutionsInfo fullHd()
{
    CaptResolutionsInfo info;
    info.width = 1920;
    info.height = 1080;
    info.frameRate = 59.94f;
    info.text = "NV12";
    return info;
}

} // namespace

class TestCaptResolutionsInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyByDefault();
    void equalsItsCopy();
    void defaultsAreEqual();
    void differsInAnyField_data();
    void differsInAnyField();
    void comparesFrameRatesExactly();
};

void TestCaptResolutionsInfo::isEmptyByDefault()
{
    const CaptResolutionsInfo info;

    QCOMPARE(info.width, 0);
    QCOMPARE(info.height, 0);
    QCOMPARE(info.frameRate, 0.0f);
    QVERIFY(info.text.empty());
}

void TestCaptResolutionsInfo::equalsItsCopy()
{
    const CaptResolutionsInfo original = fullHd();
    const CaptResolutionsInfo copy = original;

    QVERIFY(copy == original);
    QVERIFY(!(copy != original));
}

void TestCaptResolutionsInfo::defaultsAreEqual()
{
    QVERIFY(CaptResolutionsInfo{} == CaptResolutionsInfo{});
    QVERIFY(CaptResolutionsInfo{} != fullHd());
}

void TestCaptResolutionsInfo::differsInAnyField_data()
{
    QTest::addColumn<int>("field");

    QTest::newRow("width") << 0;
    QTest::newRow("height") << 1;
    QTest::newRow("frameRate") << 2;
    QTest::newRow("text") << 3;
}

void TestCaptResolutionsInfo::differsInAnyField()
{
    QFETCH(int, field);
    const CaptResolutionsInfo original = fullHd();
    CaptResolutionsInfo changed = original;

    switch (field) {
    case 0:
        changed.width = 1280;
        break;
    case 1:
        changed.height = 720;
        break;
    case 2:
        changed.frameRate = 50.0f;
        break;
    default:
        changed.text = "YUY2";
        break;
    }

    QVERIFY(changed != original);
    QVERIFY(!(changed == original));
    QVERIFY(original != changed);
}

void TestCaptResolutionsInfo::comparesFrameRatesExactly()
{
    const CaptResolutionsInfo original = fullHd();
    CaptResolutionsInfo nearly = original;
    nearly.frameRate = std::nextafter(original.frameRate, std::numeric_limits<float>::max());

    QVERIFY(nearly != original);
}

QTEST_GUILESS_MAIN(TestCaptResolutionsInfo)
#include "tst_captresolutionsinfo.moc"
