// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/testing/vexainputsourcewidget_testing_export.h>

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace vexa::testing {

/// One message as Qt logged it, with the context of the call that logged it.
struct LoggedMessage
{
    /// QtWarningMsg, QtDebugMsg, ...
    QtMsgType type = QtDebugMsg;
    /// The message, exactly as logged.
    QString text;
    /// The source file of the call, as the compiler named it; empty without a context.
    QByteArray file;
    /// The line of the call; 0 without a context.
    int line = 0;
    /// The signature of the calling function, e.g. "void Tile::setSource(int)".
    QByteArray function;
    /// The logging category: "default" for plain qWarning() and for VEXA_WARNING in code that
    /// names no category, "vexa.inputsource" for the library's warnings.
    QByteArray category;
    /// The thread that logged it.
    std::thread::id thread;
};

/// Records every Qt message logged on any thread while it exists, so that a test can check
/// what was warned about and where:
///
///     WarningRecorder recorder;
///     widget.setInputSourceMgr(nullptr);
///     QCOMPARE(recorder.count("nullptr == inputSourceMgr"), 1);
///     const auto warning = recorder.find("nullptr == inputSourceMgr");
///     QVERIFY(warning && warning->function.contains("setInputSourceMgr"));
///
/// It installs its own message handler and puts the previous one back when destroyed. Messages
/// are not passed on unless forwarding is switched on, so QTest::ignoreMessage() does not see
/// them either. Recorders may nest: the newest one records, and one destroyed out of order
/// leaves the others working. Every member may be called from any thread.
class VEXAINPUTSOURCEWIDGET_TESTING_EXPORT WarningRecorder
{
public:
    /// Starts recording. Any thread.
    WarningRecorder();
    /// Stops recording and puts back the handler that was installed before. Any thread.
    ~WarningRecorder();

    WarningRecorder(const WarningRecorder&) = delete;
    WarningRecorder& operator=(const WarningRecorder&) = delete;

    /// Every message recorded so far, in the order they were logged. Any thread.
    std::vector<LoggedMessage> messages() const;
    /// The first recorded message whose text is exactly `text`, if any. Any thread.
    std::optional<LoggedMessage> find(const QString& text) const;
    /// How many recorded messages have exactly the text `text`. Any thread.
    int count(const QString& text) const;
    /// Forgets the messages recorded so far. Any thread.
    void clear();
    /// Also passes each message to the handler installed before (off at first). Any thread.
    void setForwarding(bool forward);
    /// Whether messages are passed on. Any thread.
    bool isForwarding() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::testing
