// SPDX-License-Identifier: MIT
#include <zqctuils/indexgenerator.h>

#include <QElapsedTimer>
#include <QTest>

using zqctuils::IndexGenerator;

class TestIndexGenerator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void generateIndex_data();
    void generateIndex();
    void numbersBeyondTheListDoNotMatter();
    void fullSequenceOfManyNames();
};

void TestIndexGenerator::generateIndex_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("expected");

    const QString web = QStringLiteral("WebPage");

    QTest::newRow("empty list") << QStringList() << web << 1;
    QTest::newRow("first two taken")
        << QStringList{QStringLiteral("WebPage1"), QStringLiteral("WebPage2")} << web << 3;
    QTest::newRow("unordered") << QStringList{QStringLiteral("WebPage3"),
                                              QStringLiteral("WebPage1"),
                                              QStringLiteral("WebPage2")}
                               << web << 4;
    QTest::newRow("gap reused") << QStringList{QStringLiteral("WebPage1"),
                                               QStringLiteral("WebPage3")}
                                << web << 2;
    QTest::newRow("first free") << QStringList{QStringLiteral("WebPage2"),
                                               QStringLiteral("WebPage3")}
                                << web << 1;
    QTest::newRow("other prefixes ignored")
        << QStringList{QStringLiteral("Camera1"), QStringLiteral("Camera2"),
                       QStringLiteral("Media1"), QStringLiteral("WebPage1")}
        << web << 2;
    QTest::newRow("prefix inside a name") << QStringList{QStringLiteral("MyWebPage1")} << web << 1;
    QTest::newRow("leading zero") << QStringList{QStringLiteral("WebPage01")} << web << 1;
    QTest::newRow("zero") << QStringList{QStringLiteral("WebPage0"), QStringLiteral("WebPage1")}
                          << web << 2;
    QTest::newRow("plus sign") << QStringList{QStringLiteral("WebPage+1")} << web << 1;
    QTest::newRow("minus sign") << QStringList{QStringLiteral("WebPage-1")} << web << 1;
    QTest::newRow("trailing letters")
        << QStringList{QStringLiteral("WebPage2a"), QStringLiteral("WebPage1")} << web << 2;
    QTest::newRow("space") << QStringList{QStringLiteral("WebPage 1"), QStringLiteral("WebPage1 ")}
                           << web << 1;
    QTest::newRow("other script digits")
        << QStringList{QStringLiteral("WebPage١")} << web << 1; // ARABIC-INDIC DIGIT ONE
    QTest::newRow("prefix alone") << QStringList{QStringLiteral("WebPage")} << web << 1;
    QTest::newRow("case-sensitive")
        << QStringList{QStringLiteral("webpage1"), QStringLiteral("WEBPAGE1")} << web << 1;
    QTest::newRow("huge number") << QStringList{QStringLiteral("WebPage99999999999999999999")}
                                 << web << 1;
    QTest::newRow("int overflow") << QStringList{QStringLiteral("WebPage1"),
                                                 QStringLiteral("WebPage4294967297")}
                                  << web << 2;
    QTest::newRow("largest int") << QStringList{QStringLiteral("WebPage2147483647")} << web << 1;
    QTest::newRow("duplicates") << QStringList{QStringLiteral("WebPage1"),
                                               QStringLiteral("WebPage1"),
                                               QStringLiteral("WebPage1"),
                                               QStringLiteral("WebPage2")}
                                << web << 3;
    QTest::newRow("duplicates leave gap")
        << QStringList{QStringLiteral("WebPage1"), QStringLiteral("WebPage1"),
                       QStringLiteral("WebPage3"), QStringLiteral("WebPage3")}
        << web << 2;
    QTest::newRow("multi-digit") << QStringList{QStringLiteral("WebPage10"),
                                                QStringLiteral("WebPage1")}
                                 << web << 2;
    QTest::newRow("empty prefix") << QStringList{QStringLiteral("1"), QStringLiteral("2"),
                                                 QStringLiteral("x3")}
                                  << QString() << 3;
    QTest::newRow("non-ASCII prefix")
        << QStringList{QStringLiteral("网页1"), QStringLiteral("网页2")} << QStringLiteral("网页")
        << 3;
}

void TestIndexGenerator::generateIndex()
{
    QFETCH(QStringList, names);
    QFETCH(QString, prefix);
    QFETCH(int, expected);
    QCOMPARE(IndexGenerator::generateIndex(names, prefix), expected);
}

void TestIndexGenerator::numbersBeyondTheListDoNotMatter()
{
    const QStringList names{QStringLiteral("WebPage1"), QStringLiteral("WebPage2"),
                            QStringLiteral("WebPage5")};
    QCOMPARE(IndexGenerator::generateIndex(names, QStringLiteral("WebPage")), 3);
    const QStringList full{QStringLiteral("WebPage1"), QStringLiteral("WebPage2"),
                           QStringLiteral("WebPage3"), QStringLiteral("WebPage5")};
    QCOMPARE(IndexGenerator::generateIndex(full, QStringLiteral("WebPage")), 4);
}

void TestIndexGenerator::fullSequenceOfManyNames()
{
    // Numbered in reverse with the last one missing, so any scan that restarts for each
    // candidate number is quadratic; 100000 names keep such a scan far above the time limit.
    constexpr int count = 100000;
    QStringList names;
    names.reserve(count);
    for (int n = count; n >= 1; --n) {
        if (n != count) {
            names.append(QStringLiteral("WebPage%1").arg(n));
        }
    }
    names.append(QStringLiteral("Camera%1").arg(count));

    QElapsedTimer timer;
    timer.start();
    QCOMPARE(IndexGenerator::generateIndex(names, QStringLiteral("WebPage")), count);
    QVERIFY2(timer.elapsed() < 2000, "generateIndex is not linear in the number of names");
}

QTEST_GUILESS_MAIN(TestIndexGenerator)
#include "tst_indexgenerator.moc"
