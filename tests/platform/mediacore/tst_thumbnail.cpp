// SPDX-License-Identifier: MIT
#include <zq/mediacore/thumbnail.h>

#include <QtTest>

#include <cstddef>
#include <vector>

using zq::mediacore::Thumbnail;

namespace {

Thumbnail make(int width, int height, std::size_t bytes)
{
    Thumbnail thumbnail;
    thumbnail.width = width;
    thumbnail.height = height;
    thumbnail.rgba.assign(bytes, 0x7f);
    return thumbnail;
}

} // namespace

class TestThumbnail : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyByDefault();
    void validity_data();
    void validity();
};

void TestThumbnail::isEmptyByDefault()
{
    const Thumbnail thumbnail;

    QCOMPARE(thumbnail.width, 0);
    QCOMPARE(thumbnail.height, 0);
    QVERIFY(thumbnail.rgba.empty());
    QVERIFY(!thumbnail.isValid());
}

void TestThumbnail::validity_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<qulonglong>("bytes");
    QTest::addColumn<bool>("valid");

    QTest::newRow("one pixel") << 1 << 1 << 4ULL << true;
    QTest::newRow("packed 3x2") << 3 << 2 << 24ULL << true;
    QTest::newRow("160x90") << 160 << 90 << 57600ULL << true;
    QTest::newRow("one byte short") << 3 << 2 << 23ULL << false;
    QTest::newRow("one byte over") << 3 << 2 << 25ULL << false;
    QTest::newRow("padded lines") << 3 << 2 << 32ULL << false;
    QTest::newRow("bytes without sizes") << 0 << 0 << 16ULL << false;
    QTest::newRow("zero width") << 0 << 2 << 0ULL << false;
    QTest::newRow("zero height") << 2 << 0 << 0ULL << false;
    QTest::newRow("negative width") << -2 << -2 << 16ULL << false;
    QTest::newRow("negative height") << 2 << -1 << 0ULL << false;
    QTest::newRow("sizes without bytes") << 4 << 4 << 0ULL << false;
}

void TestThumbnail::validity()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(qulonglong, bytes);
    QFETCH(bool, valid);

    QCOMPARE(make(width, height, static_cast<std::size_t>(bytes)).isValid(), valid);
}

QTEST_GUILESS_MAIN(TestThumbnail)
#include "tst_thumbnail.moc"
