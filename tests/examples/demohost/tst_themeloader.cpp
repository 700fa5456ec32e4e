// SPDX-License-Identifier: MIT
#include "themeloader.h"

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <vexa/widgets/style.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMovie>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QtTest>

using demohost::ThemeLoader;

class TestThemeLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void relativeUrlsBecomeAbsolute_data();
    void relativeUrlsBecomeAbsolute();
    void theShippedSheetNamesOnlyFilesThatExist();
    void everyIconIsWellFormedSvg();
    void theLoadingAnimationIsAnAnimatedGif();
    void theSheetParsesAfterTheKitSheet();
    void anUnreadableSheetWarns();
};

void TestThemeLoader::relativeUrlsBecomeAbsolute_data()
{
    QTest::addColumn<QString>("rule");
    QTest::addColumn<QString>("expected");
    QTest::newRow("bare") << "a { image: url(icons/a.svg); }"
                          << "a { image: url(\"/themes/icons/a.svg\"); }";
    QTest::newRow("single quotes, space in the name")
        << "a { image: url('icons/b c.svg'); }"
        << "a { image: url(\"/themes/icons/b c.svg\"); }";
    QTest::newRow("double quotes") << "a { image: url(\"x.png\"); }"
                                   << "a { image: url(\"/themes/x.png\"); }";
    QTest::newRow("spaces inside") << "a { image: url( icons/g.svg ); }"
                                   << "a { image: url(\"/themes/icons/g.svg\"); }";
    QTest::newRow("dot segments") << "a { image: url(./icons/../d.svg); }"
                                  << "a { image: url(\"/themes/d.svg\"); }";
    QTest::newRow("resource") << "a { image: url(:/res/a.svg); }"
                              << "a { image: url(:/res/a.svg); }";
    QTest::newRow("absolute") << "a { image: url(/abs/a.svg); }"
                              << "a { image: url(/abs/a.svg); }";
    QTest::newRow("scheme") << "a { image: url(qrc:/a.svg); }"
                            << "a { image: url(qrc:/a.svg); }";
    QTest::newRow("two in a row") << "a { image: url(a.svg); } b { image: url(b.svg); }"
                                  << "a { image: url(\"/themes/a.svg\"); } b { image: "
                                     "url(\"/themes/b.svg\"); }";
    QTest::newRow("none") << "a { color: red; }"
                          << "a { color: red; }";
}

void TestThemeLoader::relativeUrlsBecomeAbsolute()
{
    QFETCH(QString, rule);
    QFETCH(QString, expected);
    QCOMPARE(ThemeLoader::absoluteUrls(rule, QStringLiteral("/themes")), expected);
}

void TestThemeLoader::theShippedSheetNamesOnlyFilesThatExist()
{
    const QString dir = ThemeLoader::themesDir();
    QVERIFY(!dir.isEmpty());
    const QString sheet = ThemeLoader::styleSheet(dir);
    QVERIFY(!sheet.isEmpty());

    const QRegularExpression url(QStringLiteral(R"re(url\(([^)]*)\))re"));
    int icons = 0;
    QRegularExpressionMatchIterator matches = url.globalMatch(sheet);
    while (matches.hasNext()) {
        QString path = matches.next().captured(1);
        QVERIFY2(path.startsWith(QLatin1Char('"')) && path.endsWith(QLatin1Char('"')),
                 qPrintable(path));
        path = path.mid(1, path.size() - 2);
        QVERIFY2(QFileInfo(path).isAbsolute(), qPrintable(path));
        QVERIFY2(QFileInfo::exists(path), qPrintable(path));
        ++icons;
    }
    QVERIFY(icons >= 10);
    QVERIFY(QFileInfo::exists(ThemeLoader::loadingAnimation(dir)));
}

void TestThemeLoader::everyIconIsWellFormedSvg()
{
    const QDir icons(QDir(ThemeLoader::themesDir()).filePath(QStringLiteral("icons")));
    const QStringList files = icons.entryList({QStringLiteral("*.svg")}, QDir::Files);
    QVERIFY(files.size() >= 10);
    for (const QString& name : files) {
        QFile file(icons.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QXmlStreamReader xml(&file);
        QVERIFY(xml.readNextStartElement());
        QCOMPARE(xml.name().toString(), QStringLiteral("svg"));
        while (!xml.atEnd()) {
            xml.readNext();
        }
        QVERIFY2(!xml.hasError(), qPrintable(name + QLatin1String(": ") + xml.errorString()));
    }
}

void TestThemeLoader::theLoadingAnimationIsAnAnimatedGif()
{
    QMovie movie(ThemeLoader::loadingAnimation(ThemeLoader::themesDir()));
    QVERIFY(movie.isValid());
    QCOMPARE(movie.format(), QByteArray("gif"));
    QVERIFY(movie.frameCount() > 1);
    // A GIF is read front to back: frames are reached one after the other.
    QVERIFY(movie.jumpToNextFrame());
    const QImage first = movie.currentImage();
    QCOMPARE(first.size(), QSize(64, 64));
    for (int frame = 1; frame < movie.frameCount() / 2; ++frame) {
        QVERIFY(movie.jumpToNextFrame());
    }
    QVERIFY(movie.currentImage() != first);
}

void TestThemeLoader::theSheetParsesAfterTheKitSheet()
{
    vexa::testing::WarningRecorder recorder;
    qApp->setStyleSheet(vexa::widgets::defaultStyleSheet() +
                        ThemeLoader::styleSheet(ThemeLoader::themesDir()));
    vexa::inputsource::InputSourceBox box;
    box.setTitle(QStringLiteral("Streams"));
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    box.grab();
    for (const auto& message : recorder.messages()) {
        QVERIFY2(!message.text.contains(QLatin1String("parse"), Qt::CaseInsensitive),
                 qPrintable(message.text));
    }
    qApp->setStyleSheet(QString());
}

void TestThemeLoader::anUnreadableSheetWarns()
{
    vexa::testing::WarningRecorder recorder;
    QVERIFY(ThemeLoader::styleSheet(QStringLiteral("/nonexistent/themes")).isEmpty());
    const auto messages = recorder.messages();
    QCOMPARE(messages.size(), std::size_t(1));
    QVERIFY(messages.front().text.startsWith(QLatin1String("cannot read the theme")));
}

QTEST_MAIN(TestThemeLoader)

#include "tst_themeloader.moc"
