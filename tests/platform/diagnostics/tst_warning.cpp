#include <vexa/diagnostics/warning.h>

#include <QString>
#include <QtTest>

#include <thread>
#include <vector>

namespace {

struct LoggedMessage
{
    QtMsgType type;
    QString text;
    QByteArray file;
    int line;
    QByteArray function;
    QByteArray category;
};

// Records what is logged while it exists, instead of letting Qt Test print it.
class MessageCapture
{
public:
    MessageCapture()
    {
        s_messages.clear();
        m_previous = qInstallMessageHandler(&MessageCapture::handle);
    }
    ~MessageCapture() { qInstallMessageHandler(m_previous); }

    MessageCapture(const MessageCapture&) = delete;
    MessageCapture& operator=(const MessageCapture&) = delete;

    const std::vector<LoggedMessage>& messages() const { return s_messages; }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        s_messages.push_back({type, text, QByteArray(context.file), context.line,
                              QByteArray(context.function), QByteArray(context.category)});
    }

    static inline std::vector<LoggedMessage> s_messages;
    QtMessageHandler m_previous = nullptr;
};

} // namespace

class TestWarning : public QObject
{
    Q_OBJECT

private slots:
    void logsCStringWithCallSite();
    void logsQStringWithCallSite();
    void keepsTextExactly();
    void isOneStatement();
    void logsFromAnyThread();

private:
    int reportMissingSource(int sourceIndex, const QString& name);
};

int TestWarning::reportMissingSource(int sourceIndex, const QString& name)
{
    const int line = __LINE__ + 1;
    VEXA_WARNING(QStringLiteral("source %1 (%2) has no frame").arg(sourceIndex).arg(name));
    return line;
}

void TestWarning::logsCStringWithCallSite()
{
    MessageCapture capture;
    const int line = __LINE__ + 1;
    VEXA_WARNING("nullptr == inputSourceMgr");

    QCOMPARE(capture.messages().size(), std::size_t(1));
    const LoggedMessage& message = capture.messages().front();
    QCOMPARE(message.type, QtWarningMsg);
    QCOMPARE(message.text, QStringLiteral("nullptr == inputSourceMgr"));
    QVERIFY2(message.file.endsWith("tst_warning.cpp"), message.file.constData());
    QCOMPARE(message.line, line);
    QCOMPARE(message.function, QByteArray("void TestWarning::logsCStringWithCallSite()"));
    QCOMPARE(message.category, QByteArray("default"));
}

void TestWarning::logsQStringWithCallSite()
{
    MessageCapture capture;
    const int line = reportMissingSource(3, QStringLiteral("Camera \"A\""));

    QCOMPARE(capture.messages().size(), std::size_t(1));
    const LoggedMessage& message = capture.messages().front();
    QCOMPARE(message.type, QtWarningMsg);
    QCOMPARE(message.text, QStringLiteral("source 3 (Camera \"A\") has no frame"));
    QVERIFY2(message.file.endsWith("tst_warning.cpp"), message.file.constData());
    QCOMPARE(message.line, line);
    QVERIFY2(message.function.contains("TestWarning::reportMissingSource(int, const QString&)"),
             message.function.constData());
}

void TestWarning::keepsTextExactly()
{
    MessageCapture capture;
    const QString text = QStringLiteral("  \"quoted\"\ttext with trailing space ");
    VEXA_WARNING(text);
    VEXA_WARNING("");

    QCOMPARE(capture.messages().size(), std::size_t(2));
    QCOMPARE(capture.messages()[0].text, text);
    QCOMPARE(capture.messages()[1].text, QString());
}

void TestWarning::isOneStatement()
{
    MessageCapture capture;
    const bool found = capture.messages().empty();
    if (found)
        VEXA_WARNING("taken");
    else
        VEXA_WARNING("not taken");

    QCOMPARE(capture.messages().size(), std::size_t(1));
    QCOMPARE(capture.messages().front().text, QStringLiteral("taken"));
}

void TestWarning::logsFromAnyThread()
{
    MessageCapture capture;
    int line = 0;
    std::thread worker([&line] {
        line = __LINE__ + 1;
        VEXA_WARNING("from a worker thread");
    });
    worker.join();

    QCOMPARE(capture.messages().size(), std::size_t(1));
    const LoggedMessage& message = capture.messages().front();
    QCOMPARE(message.text, QStringLiteral("from a worker thread"));
    QCOMPARE(message.line, line);
    QVERIFY(message.file.endsWith("tst_warning.cpp"));
    QVERIFY2(message.function.contains("logsFromAnyThread"), message.function.constData());
}

QTEST_GUILESS_MAIN(TestWarning)

#include "tst_warning.moc"
