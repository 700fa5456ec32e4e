// SPDX-License-Identifier: MIT
#include <vexa/layout/floatingitemwidget.h>

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QSignalSpy>
#include <QTest>

using vexa::layout::FloatingItemWidget;

namespace {

class TranslatedPanel : public FloatingItemWidget
{
public:
    TranslatedPanel()
        : FloatingItemWidget(QStringLiteral("test.translated"))
    {}

    void translateLanguage() override
    {
        ++translations;
        setTitleText(QStringLiteral("Translated %1").arg(translations));
        FloatingItemWidget::translateLanguage();
    }

    int translations = 0;
};

} // namespace

class TestFloatingItemWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsItsId();
    void startsWithoutTitle();
    void titleTextBecomesTheWindowTitle();
    void titleTextChangedFiresOncePerChange();
    void settingTheSameTitleRestoresTheWindowTitle();
    void hostingDockShowsTheTitle();
    void dockTakesTheTitleSetBeforeHosting();
    void dockInAMainWindowShowsTheTitle();
    void translateLanguageReachesTheSubclass();
    void baseTranslateLanguageChangesNothing();
};

void TestFloatingItemWidget::keepsItsId()
{
    QWidget parent;
    FloatingItemWidget panel(QStringLiteral("vexa.inputsourcewidget"), &parent);
    QCOMPARE(panel.id(), QStringLiteral("vexa.inputsourcewidget"));
    QCOMPARE(panel.parentWidget(), &parent);

    panel.setTitleText(QStringLiteral("Sources"));
    QCOMPARE(panel.id(), QStringLiteral("vexa.inputsourcewidget"));

    const FloatingItemWidget unnamed{QString()};
    QVERIFY(unnamed.id().isEmpty());
}

void TestFloatingItemWidget::startsWithoutTitle()
{
    const FloatingItemWidget panel(QStringLiteral("panel"));
    QVERIFY(panel.titleText().isEmpty());
    QVERIFY(panel.windowTitle().isEmpty());
}

void TestFloatingItemWidget::titleTextBecomesTheWindowTitle()
{
    FloatingItemWidget panel(QStringLiteral("panel"));
    panel.setTitleText(QStringLiteral("InputSource"));
    QCOMPARE(panel.titleText(), QStringLiteral("InputSource"));
    QCOMPARE(panel.windowTitle(), QStringLiteral("InputSource"));

    panel.setTitleText(QStringLiteral("输入源"));
    QCOMPARE(panel.titleText(), QStringLiteral("输入源"));
    QCOMPARE(panel.windowTitle(), QStringLiteral("输入源"));
}

void TestFloatingItemWidget::titleTextChangedFiresOncePerChange()
{
    FloatingItemWidget panel(QStringLiteral("panel"));
    QSignalSpy spy(&panel, &FloatingItemWidget::titleTextChanged);

    panel.setTitleText(QStringLiteral("A"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("A"));

    panel.setTitleText(QStringLiteral("A"));
    QCOMPARE(spy.count(), 1);

    panel.setTitleText(QStringLiteral("B"));
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toString(), QStringLiteral("B"));

    panel.setTitleText(QString());
    QCOMPARE(spy.count(), 3);
    QVERIFY(spy.at(2).at(0).toString().isEmpty());
    QVERIFY(panel.windowTitle().isEmpty());
}

void TestFloatingItemWidget::settingTheSameTitleRestoresTheWindowTitle()
{
    FloatingItemWidget panel(QStringLiteral("panel"));
    panel.setTitleText(QStringLiteral("Sources"));
    panel.setWindowTitle(QStringLiteral("Changed elsewhere"));
    QSignalSpy spy(&panel, &FloatingItemWidget::titleTextChanged);

    panel.setTitleText(QStringLiteral("Sources"));
    QCOMPARE(panel.windowTitle(), QStringLiteral("Sources"));
    QCOMPARE(spy.count(), 0);
}

void TestFloatingItemWidget::hostingDockShowsTheTitle()
{
    QDockWidget dock;
    auto* panel = new FloatingItemWidget(QStringLiteral("panel"));
    dock.setWidget(panel);

    panel->setTitleText(QStringLiteral("InputSource"));
    QCOMPARE(dock.windowTitle(), QStringLiteral("InputSource"));

    panel->setTitleText(QStringLiteral("Sources"));
    QCOMPARE(dock.windowTitle(), QStringLiteral("Sources"));
}

void TestFloatingItemWidget::dockTakesTheTitleSetBeforeHosting()
{
    auto* panel = new FloatingItemWidget(QStringLiteral("panel"));
    panel->setTitleText(QStringLiteral("InputSource"));

    QDockWidget dock;
    dock.setWidget(panel);
    QCOMPARE(dock.windowTitle(), QStringLiteral("InputSource"));
}

void TestFloatingItemWidget::dockInAMainWindowShowsTheTitle()
{
    QMainWindow window;
    auto* dock = new QDockWidget(&window);
    window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    auto* panel = new FloatingItemWidget(QStringLiteral("panel"));
    dock->setWidget(panel);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    panel->setTitleText(QStringLiteral("InputSource"));
    QCOMPARE(dock->windowTitle(), QStringLiteral("InputSource"));
    QCOMPARE(dock->toggleViewAction()->text(), QStringLiteral("InputSource"));

    dock->setFloating(true);
    panel->setTitleText(QStringLiteral("Floating"));
    QCOMPARE(dock->windowTitle(), QStringLiteral("Floating"));
}

void TestFloatingItemWidget::translateLanguageReachesTheSubclass()
{
    TranslatedPanel panel;
    QSignalSpy spy(&panel, &FloatingItemWidget::titleTextChanged);
    FloatingItemWidget* base = &panel;

    base->translateLanguage();
    QCOMPARE(panel.translations, 1);
    QCOMPARE(base->titleText(), QStringLiteral("Translated 1"));

    base->translateLanguage();
    QCOMPARE(panel.translations, 2);
    QCOMPARE(spy.count(), 2);
}

void TestFloatingItemWidget::baseTranslateLanguageChangesNothing()
{
    FloatingItemWidget panel(QStringLiteral("panel"));
    panel.setTitleText(QStringLiteral("InputSource"));
    QSignalSpy spy(&panel, &FloatingItemWidget::titleTextChanged);

    panel.translateLanguage();
    QCOMPARE(panel.titleText(), QStringLiteral("InputSource"));
    QCOMPARE(panel.windowTitle(), QStringLiteral("InputSource"));
    QCOMPARE(spy.count(), 0);
}

QTEST_MAIN(TestFloatingItemWidget)
#include "tst_floatingitemwidget.moc"
