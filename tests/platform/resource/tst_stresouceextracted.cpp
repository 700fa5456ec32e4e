// SPDX-License-Identifier: MIT
#include <quandel/resource/stresouceextracted.h>

#include <QtTest>

#include <string>
#include <utility>

using quandel::resource::STResouceExtracted;

class TestSTResouceExtracted : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsNothingByDefault();
    void carriesAFailure();
    void carriesASuccess();
};

void TestSTResouceExtracted::reportsNothingByDefault()
{
    const STResouceExtracted report;

    QCOMPARE(report.resourceId, uint64_t{0});
    QCOMPARE(report.succeeded, false);
    QVERIFY(report.errorText.empty());
}

void TestSTResouceExtracted::carriesAFailure()
{
    const STResouceExtracted report{42, false, "no video stream"};
    const STResouceExtracted copy = report;

    QCOMPARE(copy.resourceId, uint64_t{42});
    QCOMPARE(copy.succeeded, false);
    QCOMPARE(copy.errorText, std::string("no video stream"));
}

void TestSTResouceExtracted::carriesASuccess()
{
    STResouceExtracted report;
    report.resourceId = 7;
    report.succeeded = true;

    const STResouceExtracted moved = std::move(report);

    QCOMPARE(moved.resourceId, uint64_t{7});
    QCOMPARE(moved.succeeded, true);
    QVERIFY(moved.errorText.empty());
}

QTEST_GUILESS_MAIN(TestSTResouceExtracted)
#include "tst_stresouceextracted.moc"
