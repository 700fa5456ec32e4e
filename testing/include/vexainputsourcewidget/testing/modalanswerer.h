// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/testing/vexainputsourcewidget_testing_export.h>

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

class QWidget;

namespace vexa::testing {

/// Answers the next modal window as a person would: it waits for the window to appear, then
/// clicks one of its buttons (or presses a key, or closes it). Arm it before the call that
/// opens the window and blocks:
///
///     ModalAnswerer answerer;
///     answerer.clickWhenShown("firstBtn");
///     const auto info = tipDialog.run();
///     QVERIFY2(answerer.answered(), qPrintable(answerer.errorString()));
///
/// "Next" means a modal window other than the one that was active when the answerer was armed,
/// so an answerer armed from inside an open dialog answers the dialog that this one opens.
/// Each answerer answers once; arming it again replaces a pending answer. It polls
/// QApplication::activeModalWidget() with a timer, so it works inside the window's own event
/// loop and on the offscreen platform. When no suitable window or button turns up within the
/// time-out, it closes the modal window that is showing, if any, so the test never hangs, and
/// reports the failure through answered(), timedOut(), errorString() and finished(false).
/// GUI thread only.
class VEXAINPUTSOURCEWIDGET_TESTING_EXPORT ModalAnswerer : public QObject
{
    Q_OBJECT

public:
    /// The time-out of a new answerer, in milliseconds.
    static constexpr int defaultTimeoutMs = 5000;

    /// An answerer that is not armed yet.
    explicit ModalAnswerer(QObject* parent = nullptr);

    /// Stops waiting; a pending answer is dropped.
    ~ModalAnswerer() override;

    /// Clicks the button found by object name, or else by its text (without "&" mnemonics),
    /// among the visible buttons of the next modal window; waits while it is missing or
    /// disabled.
    void clickWhenShown(const QString& button);

    /// Clicks several buttons of the next modal window one after the other, e.g.
    /// {"checkBox", "firstBtn"} to tick a check box and then confirm.
    void clickWhenShown(const QStringList& buttons);

    /// Presses and releases `key` on the focus widget of the next modal window (the window
    /// itself when nothing in it has the focus), e.g. Qt::Key_Escape.
    void pressKeyWhenShown(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// Asks the next modal window to close, as the desktop's close button would; the window
    /// may refuse, as it may for a person.
    void closeWhenShown();

    /// Runs `action` with the next modal window, for answers the helpers above do not offer.
    void whenShown(std::function<void(QWidget* modal)> action);

    /// Sets how long, from arming, the answerer waits for the window and its buttons.
    void setTimeout(int milliseconds);

    /// The time-out in milliseconds.
    int timeout() const;

    /// Whether the answerer is armed and still waiting.
    bool isWaiting() const;

    /// Whether the last arming ended with the answer given.
    bool answered() const;

    /// Whether the last arming ended by its time-out.
    bool timedOut() const;

    /// Why the last arming failed; empty when it did not.
    QString errorString() const;

    /// The class name of the window that was answered or closed, e.g. "vexa::widgets::TipDialog".
    QString modalClassName() const;

    /// The window title of that window.
    QString modalTitle() const;

    /// The non-empty texts of the visible labels of that window, as it was shown.
    QStringList labelTexts() const;

Q_SIGNALS:
    /// The last arming ended: `answered` is true when the answer was given, false on time-out.
    void finished(bool answered);

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::testing
