// SPDX-License-Identifier: MIT
#include <zq/mediacore/webtab.h>

#include <QtTest>

using zq::mediacore::WebTab;

class TestWebTab : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyByDefault();
    void equalsItsCopy();
    void differsInAnyField();
};

void TestWebTab::isEmptyByDefault()
{
    const WebTab tab;

    QVERIFY(tab.name.empty());
    QVERIFY(tab.url.empty());
    QCOMPARE(tab.index, 0);
}

void TestWebTab::equalsItsCopy()
{
    const WebTab tab{"Scores", "https://example.org/scores", 1};
    const WebTab copy = tab;

    QVERIFY(copy == tab);
    QVERIFY(!(copy != tab));
}

void TestWebTab::differsInAnyField()
{
    const WebTab tab{"Scores", "https://example.org/scores", 1};

    QVERIFY((WebTab{"Ticker", tab.url, tab.index}) != tab);
    QVERIFY((WebTab{tab.name, "https://example.org/ticker", tab.index}) != tab);
    QVERIFY((WebTab{tab.name, tab.url, 2}) != tab);
    QVERIFY(!((WebTab{tab.name, tab.url, 2}) == tab));
}

QTEST_GUILESS_MAIN(TestWebTab)
#include "tst_webtab.moc"
