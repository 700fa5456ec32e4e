// SPDX-License-Identifier: MIT
#include "modalloop.h"

#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <QtTest>

using vexa::inputsource::ModalLoop;

class TestModalLoop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsTheLoopAndLetsTheCallerGoOn();
    void anOwnerDestroyedDuringTheLoopStopsTheCaller();
    void anOwnerDestroyedDuringTheLoopClosesItsWindow();
    void isRunningOnlyInsideTheLoop();
    void destroyingOutsideALoopDeletesAtOnce();
    void destroyingInsideALoopWaitsForTheLoop();
    void destroyingInsideNestedLoopsWaitsForTheOutermost();
};

void TestModalLoop::runsTheLoopAndLetsTheCallerGoOn()
{
    QObject owner;
    bool ran = false;
    QVERIFY(ModalLoop::run(&owner, [&ran] { ran = true; }));
    QVERIFY(ran);
    QVERIFY(!ModalLoop::isRunning(&owner));
}

void TestModalLoop::anOwnerDestroyedDuringTheLoopStopsTheCaller()
{
    auto* const owner = new QObject;
    QVERIFY(!ModalLoop::run(owner, [owner] { delete owner; }));
}

void TestModalLoop::anOwnerDestroyedDuringTheLoopClosesItsWindow()
{
    auto* const owner = new QObject;
    QDialog dialog;
    QTimer::singleShot(0, owner, [owner] { delete owner; });
    // A safety net only: the owner's end closes the dialog long before.
    QTimer::singleShot(5000, &dialog, &QDialog::reject);
    QElapsedTimer clock;
    clock.start();
    int result = -1;
    QVERIFY(!ModalLoop::run(
        owner, [&] { result = dialog.exec(); }, &dialog));
    QVERIFY(clock.elapsed() < 4000);
    QCOMPARE(result, int(QDialog::Rejected));
    QVERIFY(!dialog.isVisible());
}

void TestModalLoop::isRunningOnlyInsideTheLoop()
{
    QObject owner;
    bool inside = false;
    ModalLoop::run(&owner, [&] { inside = ModalLoop::isRunning(&owner); });
    QVERIFY(inside);
    QVERIFY(!ModalLoop::isRunning(&owner));
}

void TestModalLoop::destroyingOutsideALoopDeletesAtOnce()
{
    QPointer<QObject> object = new QObject;
    ModalLoop::destroy(object);
    QVERIFY(object.isNull());
}

void TestModalLoop::destroyingInsideALoopWaitsForTheLoop()
{
    QWidget parent;
    QPointer<QWidget> owner = new QWidget(&parent);
    parent.show();
    QDialog menu;
    QTimer::singleShot(0, owner, [&] { ModalLoop::destroy(owner); });
    QTimer::singleShot(5000, &menu, &QDialog::reject);
    bool aliveAfterDestroy = false;
    bool leftItsParent = false;
    bool hidden = false;
    const bool goOn = ModalLoop::run(
        owner,
        [&] {
            menu.exec();
            aliveAfterDestroy = !owner.isNull();
            leftItsParent = owner->parent() == nullptr;
            hidden = owner->isHidden();
        },
        &menu);
    QVERIFY(!goOn);
    QVERIFY(aliveAfterDestroy);
    QVERIFY(leftItsParent);
    QVERIFY(hidden);
    QVERIFY(!menu.isVisible());
    // Still there until the event loop runs: the handler that opened the loop may still be on
    // the stack.
    QVERIFY(!owner.isNull());
    QTRY_VERIFY(owner.isNull());
    QVERIFY(parent.findChildren<QWidget*>().isEmpty());
}

void TestModalLoop::destroyingInsideNestedLoopsWaitsForTheOutermost()
{
    QPointer<QObject> owner = new QObject;
    bool innerGoesOn = true;
    bool aliveAfterInner = false;
    const bool outerGoesOn = ModalLoop::run(owner, [&] {
        innerGoesOn = ModalLoop::run(owner, [&] { ModalLoop::destroy(owner); });
        aliveAfterInner = !owner.isNull();
    });
    QVERIFY(!innerGoesOn);
    QVERIFY(!outerGoesOn);
    QVERIFY(aliveAfterInner);
    QTRY_VERIFY(owner.isNull());
}

QTEST_MAIN(TestModalLoop)
#include "tst_modalloop.moc"
