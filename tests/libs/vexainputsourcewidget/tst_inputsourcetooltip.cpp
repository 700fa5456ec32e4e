// SPDX-License-Identifier: MIT
#include "inputsourcetooltip.h"

#include <QtTest>

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using vexa::inputsource::InputSourceToolTip;
using Row = InputSourceToolTip::Row;

namespace {

// The labels of one row, in the order the row shows them.
struct RowLabels
{
    QHBoxLayout* row = nullptr;
    QLabel* key = nullptr;
    QLabel* value = nullptr;
};

QVector<RowLabels> rowsOf(const InputSourceToolTip& toolTip)
{
    QVector<RowLabels> rows;
    const auto* const column = qobject_cast<QVBoxLayout*>(toolTip.layout());
    if (column == nullptr) {
        return rows;
    }
    for (int i = 0; i < column->count(); ++i) {
        RowLabels labels;
        labels.row = qobject_cast<QHBoxLayout*>(column->itemAt(i)->layout());
        if (labels.row != nullptr && labels.row->count() == 2) {
            labels.key = qobject_cast<QLabel*>(labels.row->itemAt(0)->widget());
            labels.value = qobject_cast<QLabel*>(labels.row->itemAt(1)->widget());
        }
        rows.append(labels);
    }
    return rows;
}

void compareRows(const InputSourceToolTip& toolTip, const QVector<Row>& expected)
{
    const QVector<RowLabels> rows = rowsOf(toolTip);
    QCOMPARE(rows.size(), expected.size());
    for (int i = 0; i < rows.size(); ++i) {
        QVERIFY2(rows[i].key != nullptr && rows[i].value != nullptr,
                 qPrintable(QStringLiteral("row %1 is not a key and a value").arg(i)));
        QCOMPARE(rows[i].key->text(), expected[i].first);
        QCOMPARE(rows[i].value->text(), expected[i].second);
    }
}

} // namespace

class TestInputSourceToolTip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAFramelessToolWindowEvenWithAParent();
    void letsTheMouseThroughAndDrawsItsStyledBackground();
    void carriesTheBackgroundStyle();
    void startsWithoutRowsInsideItsMargins();
    void setContentBuildsOneRowPerPairInOrder();
    void rowsLineUpKeysAndValues();
    void setContentAgainAppends();
    void emptyContentAddsNothing();
    void textsShowAsPlainText();
};

void TestInputSourceToolTip::isAFramelessToolWindowEvenWithAParent()
{
    QWidget tile;
    InputSourceToolTip toolTip(&tile);

    QCOMPARE(toolTip.windowType(), Qt::Tool);
    QVERIFY(toolTip.windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(toolTip.isWindow());
    QCOMPARE(toolTip.parentWidget(), &tile);
}

void TestInputSourceToolTip::letsTheMouseThroughAndDrawsItsStyledBackground()
{
    InputSourceToolTip toolTip;

    QVERIFY(toolTip.testAttribute(Qt::WA_TransparentForMouseEvents));
    QVERIFY(toolTip.testAttribute(Qt::WA_StyledBackground));
}

void TestInputSourceToolTip::carriesTheBackgroundStyle()
{
    InputSourceToolTip toolTip;

    QCOMPARE(toolTip.property("style").toString(), QStringLiteral("BG1"));
}

void TestInputSourceToolTip::startsWithoutRowsInsideItsMargins()
{
    InputSourceToolTip toolTip;

    const auto* const column = qobject_cast<QVBoxLayout*>(toolTip.layout());
    QVERIFY(column != nullptr);
    QCOMPARE(column->contentsMargins(), QMargins(0, 8, 8, 8));
    QCOMPARE(column->count(), 0);
}

void TestInputSourceToolTip::setContentBuildsOneRowPerPairInOrder()
{
    InputSourceToolTip toolTip;
    const QVector<Row> content = {{QStringLiteral("Name"), QStringLiteral("Camera 1")},
                                  {QStringLiteral("Url"), QStringLiteral("rtsp://10.0.0.7/live")},
                                  {QStringLiteral("Dpi"), QStringLiteral("1920*1080")},
                                  {QStringLiteral("Fps"), QStringLiteral("25.00")}};

    toolTip.setContent(content);

    compareRows(toolTip, content);
    const QList<QLabel*> keys = toolTip.findChildren<QLabel*>(QStringLiteral("tipKey"));
    const QList<QLabel*> values = toolTip.findChildren<QLabel*>(QStringLiteral("tipValue"));
    QCOMPARE(keys.size(), content.size());
    QCOMPARE(values.size(), content.size());
}

void TestInputSourceToolTip::rowsLineUpKeysAndValues()
{
    InputSourceToolTip toolTip;
    toolTip.setContent(
        {{QStringLiteral("Url"), QString()}, {QStringLiteral("Dpi"), QStringLiteral("1280*720")}});

    const QVector<RowLabels> rows = rowsOf(toolTip);
    QCOMPARE(rows.size(), 2);
    for (const RowLabels& labels : rows) {
        QVERIFY(labels.key != nullptr && labels.value != nullptr);
        QCOMPARE(labels.row->contentsMargins(), QMargins(0, 0, 0, 0));
        QCOMPARE(labels.row->spacing(), 8);

        QCOMPARE(labels.key->objectName(), QStringLiteral("tipKey"));
        QCOMPARE(labels.key->minimumWidth(), 72);
        QCOMPARE(labels.key->maximumWidth(), 72);
        QCOMPARE(labels.key->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignRight);

        QCOMPARE(labels.value->objectName(), QStringLiteral("tipValue"));
        QCOMPARE(labels.value->minimumWidth(), 120);
    }
}

void TestInputSourceToolTip::setContentAgainAppends()
{
    InputSourceToolTip toolTip;
    const QVector<Row> first = {{QStringLiteral("Name"), QStringLiteral("Desk")},
                                {QStringLiteral("Url"), QStringLiteral("https://example.org")}};
    const QVector<Row> second = {{QStringLiteral("Dpi"), QStringLiteral("800*600")}};

    toolTip.setContent(first);
    toolTip.setContent(second);

    compareRows(toolTip, first + second);
}

void TestInputSourceToolTip::emptyContentAddsNothing()
{
    InputSourceToolTip toolTip;
    toolTip.setContent({{QStringLiteral("Url"), QStringLiteral("ndi://studio")}});

    toolTip.setContent({});

    compareRows(toolTip, {{QStringLiteral("Url"), QStringLiteral("ndi://studio")}});
}

void TestInputSourceToolTip::textsShowAsPlainText()
{
    InputSourceToolTip toolTip;
    toolTip.setContent({{QStringLiteral("Name"), QStringLiteral("<b>Studio</b>")}});

    const QVector<RowLabels> rows = rowsOf(toolTip);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].key->textFormat(), Qt::PlainText);
    QCOMPARE(rows[0].value->textFormat(), Qt::PlainText);
}

QTEST_MAIN(TestInputSourceToolTip)
#include "tst_inputsourcetooltip.moc"
