// SPDX-License-Identifier: MIT
#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/style.h>
#include <vexa/widgets/tipdialog.h>

#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QRegularExpression>
#include <QTest>

using vexa::widgets::RepolishScope;

class TestStyle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultStyleSheetIsThere();
    void defaultStyleSheetCoversTheStyleProperties_data();
    void defaultStyleSheetCoversTheStyleProperties();
    void everyIconItNamesIsInTheResource();
    void qtParsesItWithoutComplaint();
    void itColoursTheKit();
    void repolishReachesDescendantsOnlyWhenAsked();
    void setStylePropertyAppliesTheRuleAtOnce();
};

void TestStyle::defaultStyleSheetIsThere()
{
    const QString sheet = vexa::widgets::defaultStyleSheet();
    QVERIFY(sheet.size() > 1000);
    QCOMPARE(sheet, vexa::widgets::defaultStyleSheet());
}

void TestStyle::defaultStyleSheetCoversTheStyleProperties_data()
{
    QTest::addColumn<QString>("selector");
    const QStringList values = {
        QStringLiteral("style=\"BG1\""),
        QStringLiteral("style=\"BG2\""),
        QStringLiteral("style=\"BG3\""),
        QStringLiteral("style=\"BG4\""),
        QStringLiteral("style=\"BG5\""),
        QStringLiteral("style=\"BG6\""),
        QStringLiteral("style=\"lineEdit\""),
        QStringLiteral("style=\"general\""),
        QStringLiteral("style=\"assist\""),
        QStringLiteral("style=\"grayHint\""),
        QStringLiteral("style=\"greenHint\""),
        QStringLiteral("style=\"yellowHint\""),
        QStringLiteral("style=\"errorHint\""),
        QStringLiteral("style=\"editError\""),
        QStringLiteral("imageBtn=\"add\""),
        QStringLiteral("imageBtn=\"close\""),
        QStringLiteral("imageBtn=\"delete\""),
        QStringLiteral("imageBtn=\"display\""),
        QStringLiteral("checkStyle=\"checked\""),
        QStringLiteral("checkStyle=\"halfChecked\""),
        QStringLiteral("fontSize=\"S\""),
        QStringLiteral("fontSize=\"M\""),
        QStringLiteral("fontSize=\"L\""),
        QStringLiteral("radius=\"M\""),
        QStringLiteral("#titleBar"),
        QStringLiteral("#titleLabel"),
        QStringLiteral("#closeBtn"),
        QStringLiteral("#dialogWidget"),
        QStringLiteral("#tipText"),
        QStringLiteral("#tipIcon"),
        QStringLiteral("#firstBtn"),
        QStringLiteral("#editor"),
        QStringLiteral("#label"),
    };
    for (const QString& value : values) {
        QTest::newRow(qPrintable(value)) << value;
    }
}

void TestStyle::defaultStyleSheetCoversTheStyleProperties()
{
    QFETCH(QString, selector);
    QVERIFY(vexa::widgets::defaultStyleSheet().contains(selector));
}

void TestStyle::everyIconItNamesIsInTheResource()
{
    const QRegularExpression url(QStringLiteral("url\\((:[^)]+)\\)"));
    auto matches = url.globalMatch(vexa::widgets::defaultStyleSheet());
    int icons = 0;
    while (matches.hasNext()) {
        const QString path = matches.next().captured(1);
        QVERIFY2(QFile::exists(path), qPrintable(path));
        ++icons;
    }
    QVERIFY(icons >= 8);
}

void TestStyle::qtParsesItWithoutComplaint()
{
    QStringList warnings;
    {
        const vexa::testing::WarningRecorder recorder;
        qApp->setStyleSheet(vexa::widgets::defaultStyleSheet());
        {
            vexa::widgets::TipDialog tip(vexa::widgets::TipDialog::Warning);
            vexa::widgets::EditBox edit;
            vexa::widgets::ComboBox combo;
            vexa::widgets::PushButton button;
            button.setProperty("imageBtn", QStringLiteral("add"));
            for (QWidget* widget :
                 {static_cast<QWidget*>(&tip), static_cast<QWidget*>(&edit),
                  static_cast<QWidget*>(&combo), static_cast<QWidget*>(&button)}) {
                widget->ensurePolished();
            }
        }
        qApp->setStyleSheet(QString());
        for (const auto& message : recorder.messages()) {
            if (message.type == QtWarningMsg || message.type == QtCriticalMsg) {
                warnings.append(message.text);
            }
        }
    }
    QVERIFY2(warnings.isEmpty(), qPrintable(warnings.join(QLatin1Char('\n'))));
}

void TestStyle::itColoursTheKit()
{
    qApp->setStyleSheet(vexa::widgets::defaultStyleSheet());
    vexa::widgets::PushButton confirm(QStringLiteral("OK"));
    confirm.setProperty("style", QStringLiteral("general"));
    confirm.ensurePolished();
    QCOMPARE(confirm.palette().color(QPalette::ButtonText), QColor(0xff, 0xff, 0xff));

    QLabel hint(QStringLiteral("rtsp://, rtmp://"));
    hint.setProperty("style", QStringLiteral("errorHint"));
    hint.ensurePolished();
    QCOMPARE(hint.palette().color(QPalette::WindowText), QColor(0xf0, 0x47, 0x4b));
    hint.setProperty("style", QStringLiteral("grayHint"));
    vexa::widgets::repolish(&hint);
    QCOMPARE(hint.palette().color(QPalette::WindowText), QColor(0x8b, 0x91, 0x9b));
    qApp->setStyleSheet(QString());
}

void TestStyle::repolishReachesDescendantsOnlyWhenAsked()
{
    QWidget parent;
    parent.setStyleSheet(QStringLiteral("QLabel { color: rgb(1, 1, 1); }"
                                        "QWidget[mark=\"on\"] QLabel { color: rgb(2, 2, 2); }"));
    auto* const child = new QLabel(QStringLiteral("x"), &parent);
    child->ensurePolished();
    QCOMPARE(child->palette().color(QPalette::WindowText), QColor(1, 1, 1));

    parent.setProperty("mark", QStringLiteral("on"));
    vexa::widgets::repolish(&parent);
    QCOMPARE(child->palette().color(QPalette::WindowText), QColor(1, 1, 1));
    vexa::widgets::repolish(&parent, RepolishScope::WidgetAndDescendants);
    QCOMPARE(child->palette().color(QPalette::WindowText), QColor(2, 2, 2));
}

void TestStyle::setStylePropertyAppliesTheRuleAtOnce()
{
    QWidget window;
    window.setStyleSheet(
        QStringLiteral("QLabel[style=\"errorHint\"] { color: rgb(200, 10, 20); }"));
    auto* const label = new QLabel(QStringLiteral("hint"), &window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(label->palette().color(QPalette::WindowText) != QColor(200, 10, 20));
    vexa::widgets::setStyleProperty(label, "style", QStringLiteral("errorHint"));
    QCOMPARE(label->property("style").toString(), QStringLiteral("errorHint"));
    QCOMPARE(label->palette().color(QPalette::WindowText), QColor(200, 10, 20));
}

QTEST_MAIN(TestStyle)
#include "tst_style.moc"
