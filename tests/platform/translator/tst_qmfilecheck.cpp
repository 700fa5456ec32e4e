// SPDX-License-Identifier: MIT
#include "qmfilecheck.h"

#include <QFile>
#include <QSet>
#include <QTest>
#include <QTranslator>

#include <cstdint>
#include <initializer_list>

using quandel::trans::QmFileCheck;

namespace {

QString shippedFile(const char* code)
{
    return QStringLiteral(VEXA_TRANSLATIONS_BUILD_DIR "/vexainputsourcewidget_") +
           QLatin1String(code) + QStringLiteral(".qm");
}

QString testFile(const char* name)
{
    return QStringLiteral(VEXA_TEST_QM_DIR "/") + QLatin1String(name);
}

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// How many messages the .ts source of `code` holds: each becomes one record of the compiled file.
int messagesInSource(const QString& code)
{
    for (const QString& path : QStringLiteral(VEXA_TRANSLATION_SOURCES).split(QLatin1Char('|'))) {
        if (path.endsWith(QLatin1Char('_') + code + QStringLiteral(".ts"))) {
            return contentsOf(path).count("<message>");
        }
    }
    return -1;
}

// Pieces of hand-made files, laid out as lrelease lays them out.
const QByteArray magic = QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd");

QByteArray be32(uint32_t value)
{
    QByteArray bytes(4, '\0');
    bytes[0] = static_cast<char>(value >> 24);
    bytes[1] = static_cast<char>(value >> 16);
    bytes[2] = static_cast<char>(value >> 8);
    bytes[3] = static_cast<char>(value);
    return bytes;
}

QByteArray be16(uint16_t value)
{
    return QByteArray(1, static_cast<char>(value >> 8)) + QByteArray(1, static_cast<char>(value));
}

QByteArray block(uint8_t tag, const QByteArray& data)
{
    return QByteArray(1, static_cast<char>(tag)) + be32(static_cast<uint32_t>(data.size())) + data;
}

QByteArray utf16(const QString& text)
{
    QByteArray bytes;
    for (const QChar c : text) {
        bytes += be16(c.unicode());
    }
    return bytes;
}

QByteArray field(uint8_t tag, const QByteArray& data)
{
    return QByteArray(1, static_cast<char>(tag)) + be32(static_cast<uint32_t>(data.size())) + data;
}

// One message record: translation, empty comment, source text, context, end mark.
QByteArray record(const QString& translation, const QByteArray& source,
                  const QByteArray& context = "InputSource")
{
    return field(3, utf16(translation)) + field(8, QByteArray()) + field(6, source) +
           field(7, context) + QByteArray(1, '\x01');
}

QByteArray hashEntry(uint32_t hash, uint32_t offset)
{
    return be32(hash) + be32(offset);
}

QByteArray file(std::initializer_list<QByteArray> blocks)
{
    QByteArray bytes = magic;
    for (const QByteArray& piece : blocks) {
        bytes += piece;
    }
    return bytes;
}

QByteArray language(const QByteArray& code = "fr_FR")
{
    return block(0xa7, code);
}

// A small file with two records and their hash entries.
QByteArray twoMessages()
{
    const QByteArray first = record(QStringLiteral("Ajouter"), "Add");
    const QByteArray second = record(QStringLiteral("Fermer"), "Close");
    return file({language(), block(0x42, hashEntry(1, 0) + hashEntry(2, first.size())),
                 block(0x69, first + second)});
}

// Starting offsets of the blocks' ends in a well-formed file.
QSet<int> blockEnds(const QByteArray& bytes)
{
    QSet<int> ends;
    for (int position = 16; position + 5 <= bytes.size();) {
        const auto* const length = reinterpret_cast<const uchar*>(bytes.constData() + position + 1);
        position += 5 + ((length[0] << 24) | (length[1] << 16) | (length[2] << 8) | length[3]);
        ends.insert(position);
    }
    return ends;
}

} // namespace

class TestQmFileCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shippedFilesAreValid_data();
    void shippedFilesAreValid();
    void testFilesAreValid();
    void handMadeFileIsValid();
    void contextsAndNumerusRulesAreRead();
    void nullTranslationIsValid();
    void dependenciesAreListed();
    void notACompiledFile_data();
    void notACompiledFile();
    void malformedFile_data();
    void malformedFile();
    void everyTruncationOfAShippedFile();
    void everyFlippedBitOfAShippedFileIsSafeForQt();
};

void TestQmFileCheck::shippedFilesAreValid_data()
{
    QTest::addColumn<QString>("code");
    QTest::newRow("en_US") << "en_US";
    QTest::newRow("zh_CN") << "zh_CN";
    QTest::newRow("zh_TW") << "zh_TW";
}

void TestQmFileCheck::shippedFilesAreValid()
{
    QFETCH(QString, code);
    const QByteArray bytes = contentsOf(shippedFile(code.toLatin1().constData()));
    QVERIFY(!bytes.isEmpty());
    const QmFileCheck check(bytes);
    QVERIFY2(check.isValid(), qPrintable(check.problem()));
    QCOMPARE(check.verdict(), QmFileCheck::Verdict::Valid);
    QVERIFY(check.problem().isEmpty());
    QCOMPARE(check.language(), code);
    QVERIFY(check.messageCount() > 0);
    QCOMPARE(check.messageCount(), messagesInSource(code));
    QVERIFY(check.dependencies().isEmpty());
}

void TestQmFileCheck::testFilesAreValid()
{
    for (const char* name : {"en_US.qm", "zh_CN.qm", "second.qm", "more.qm", "nolanguage.qm"}) {
        const QmFileCheck check(contentsOf(testFile(name)));
        QVERIFY2(check.isValid(), qPrintable(QLatin1String(name) + check.problem()));
    }
    QCOMPARE(QmFileCheck(contentsOf(testFile("second.qm"))).language(), QStringLiteral("zh_TW"));
    QVERIFY(QmFileCheck(contentsOf(testFile("nolanguage.qm"))).language().isEmpty());
}

void TestQmFileCheck::handMadeFileIsValid()
{
    const QmFileCheck check(twoMessages());
    QVERIFY2(check.isValid(), qPrintable(check.problem()));
    QCOMPARE(check.language(), QStringLiteral("fr_FR"));
    QCOMPARE(check.messageCount(), 2);

    // Only the magic number: nothing to look up, nothing wrong.
    const QmFileCheck bare(magic);
    QVERIFY2(bare.isValid(), qPrintable(bare.problem()));
    QVERIFY(bare.language().isEmpty());
    QCOMPARE(bare.messageCount(), 0);
}

void TestQmFileCheck::contextsAndNumerusRulesAreRead()
{
    // A table of three slots; slot 1 leads to the list at offset 1 (2 bytes after the table).
    const QByteArray lists = QByteArray(2, '\0') + '\x0b' + "InputSource" + '\x00';
    const QByteArray contexts = be16(3) + be16(0) + be16(1) + be16(0) + lists;
    // n == 1 / n % 10 between 2 and 4 and not n % 100 between 12 and 14 / anything else
    const QByteArray rules = QByteArray::fromHex("0101ff1402 04fd 2c0c0e ff 0100");
    const QmFileCheck check(file({language(), block(0x2f, contexts), block(0x88, rules)}));
    QVERIFY2(check.isValid(), qPrintable(check.problem()));
}

void TestQmFileCheck::nullTranslationIsValid()
{
    // lrelease writes an empty translation as a null string, length 0xffffffff and no text.
    const QByteArray nullRecord =
        QByteArray(1, '\x03') + be32(0xffffffffU) + field(6, "Add") + QByteArray(1, '\x01');
    const QmFileCheck check(
        file({language(), block(0x42, hashEntry(7, 0)), block(0x69, nullRecord)}));
    QVERIFY2(check.isValid(), qPrintable(check.problem()));
}

void TestQmFileCheck::dependenciesAreListed()
{
    const QByteArray names =
        be32(8) + utf16(QStringLiteral("base")) + be32(4) + utf16(QStringLiteral("fr"));
    const QmFileCheck check(file({language(), block(0x96, names)}));
    QVERIFY2(check.isValid(), qPrintable(check.problem()));
    QCOMPARE(check.dependencies(), QStringList({QStringLiteral("base"), QStringLiteral("fr")}));

    const QmFileCheck compiled(contentsOf(testFile("dependency.qm")));
    QVERIFY2(compiled.isValid(), qPrintable(compiled.problem()));
    QCOMPARE(compiled.dependencies(), QStringList({QStringLiteral("base_fr")}));
}

void TestQmFileCheck::notACompiledFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("problem");
    QTest::newRow("empty") << QByteArray() << "0 bytes, shorter than the 16-byte magic number";
    QTest::newRow("15 bytes") << magic.left(15)
                              << "15 bytes, shorter than the 16-byte magic number";
    QTest::newRow("xml") << QByteArray("<TS language=\"en_US\"></TS>\n")
                         << "no magic number of a compiled language file at offset 0";
    QByteArray wrong = magic;
    wrong[15] = 'x';
    QTest::newRow("last magic byte")
        << wrong << "no magic number of a compiled language file at offset 0";
}

void TestQmFileCheck::notACompiledFile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, problem);
    const QmFileCheck check(bytes);
    QCOMPARE(check.verdict(), QmFileCheck::Verdict::NotQmFile);
    QVERIFY(!check.isValid());
    QCOMPARE(check.problem(), problem);
    QVERIFY(check.language().isEmpty());
}

void TestQmFileCheck::malformedFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("problem");

    const QByteArray first = record(QStringLiteral("Ajouter"), "Add");
    const QByteArray messages = block(0x69, first);
    const QByteArray hashes = block(0x42, hashEntry(1, 0));

    // Blocks.
    QTest::newRow("header cut off") << magic + QByteArray::fromHex("a70000")
                                    << "block header at offset 16 cut off: 3 bytes left, 5 needed";
    QTest::newRow("unknown block")
        << file({block(0x11, "x")}) << "unknown block tag 0x11 at offset 16";
    QTest::newRow("second language")
        << file({language(), language("de_DE")}) << "second language block at offset 26";
    QTest::newRow("empty block") << file({block(0x69, QByteArray())})
                                 << "empty messages block at offset 16";
    QByteArray longBlock = file({language()});
    longBlock[20] = 6;
    QTest::newRow("block too long")
        << longBlock << "language block at offset 16 is 6 bytes long, but only 5 bytes follow";
    QByteArray hugeBlock = file({messages});
    hugeBlock.replace(17, 4, be32(0xffffffffU));
    QTest::newRow("huge block length")
        << hugeBlock
        << QStringLiteral("messages block at offset 16 is 4294967295 bytes long, but "
                          "only %1 bytes follow")
               .arg(first.size());

    // Message records.
    QTest::newRow("record without end mark")
        << file({block(0x69, first.left(first.size() - 1))})
        << "message record at offset 21 has no end mark before the end of the messages block";
    QByteArray longField = first;
    longField.replace(1, 4, be32(0x7ffffffeU));
    QTest::newRow("translation too long")
        << file({block(0x69, longField)})
        << QStringLiteral("the translation at offset 21 is 2147483646 bytes long, but the messages "
                          "block has only %1 bytes left")
               .arg(first.size() - 5);
    QByteArray longSource = first;
    const int sourceAt = longSource.indexOf("Add") - 5;
    longSource.replace(sourceAt + 1, 4, be32(0xff000003U));
    QTest::newRow("source text too long")
        << file({block(0x69, longSource)})
        << QStringLiteral("the source text at offset %1 is 4278190083 bytes long, but the "
                          "messages block has only %2 bytes left")
               .arg(21 + sourceAt)
               .arg(first.size() - sourceAt - 5);
    QTest::newRow("length cut off")
        << file({block(0x69, QByteArray::fromHex("060000"))})
        << "length of the source text at offset 21 cut off by the end of the messages block";
    QTest::newRow("odd translation")
        << file({block(0x69, field(3, "abc") + QByteArray(1, '\x01'))})
        << "the translation at offset 21 has an odd length (3) for UTF-16 text";
    QTest::newRow("unknown field") << file({block(0x69, QByteArray::fromHex("0201"))})
                                   << "unknown field tag 0x02 at offset 21 in a message record";
    QTest::newRow("obsolete field cut off")
        << file({block(0x69, QByteArray::fromHex("050000"))})
        << "field at offset 21 cut off by the end of the messages block";

    // Hashes.
    QTest::newRow("partial hash entry")
        << file({block(0x42, hashEntry(1, 0) + "xyz"), messages})
        << "hashes block at offset 16 is 11 bytes long, not a whole number of 8-byte entries";
    QTest::newRow("hashes without messages")
        << file({hashes}) << "hashes block at offset 16 without a messages block";
    QTest::newRow("hash outside messages")
        << file({block(0x42, hashEntry(1, 4000)), messages})
        << QStringLiteral("hash entry at offset 21 points to 4000, outside the %1-byte messages "
                          "block")
               .arg(first.size());
    QTest::newRow("hash into a record")
        << file({block(0x42, hashEntry(1, 5)), messages})
        << "hash entry at offset 21 points into the middle of a message record (messages block "
           "offset 5)";
    QTest::newRow("hashes unsorted")
        << file({block(0x42, hashEntry(9, 0) + hashEntry(3, 0)), messages})
        << "hash table not sorted at offset 29";

    // Contexts.
    QTest::newRow("contexts too short")
        << file({block(0x2f, "\x01")})
        << "contexts block at offset 16 too short for its table size";
    QTest::newRow("contexts table size 0") << file({block(0x2f, be16(0) + be16(0))})
                                           << "contexts block at offset 16 has a table of size 0";
    QTest::newRow("contexts table too big")
        << file({block(0x2f, be16(4) + be16(0))})
        << "contexts table at offset 21 has 4 entries, more than its block holds";
    QTest::newRow("context list outside")
        << file({block(0x2f, be16(1) + be16(9) + QByteArray(2, '\0'))})
        << "context list of table entry 0 runs past the end of the contexts block at offset 16";
    QTest::newRow("context name too long")
        << file({block(0x2f, be16(1) + be16(1) + QByteArray(2, '\0') + "\x09Input" + '\0')})
        << "context name at offset 27 runs past the end of the contexts block";
    QTest::newRow("context list unended")
        << file({block(0x2f, be16(1) + be16(1) + QByteArray(2, '\0') + "\x05Input")})
        << "context list of table entry 0 runs past the end of the contexts block at offset 16";

    // Numerus rules.
    QTest::newRow("rule operator") << file({block(0x88, QByteArray::fromHex("0701"))})
                                   << "numerus rules: unknown operator 0x07 at offset 21";
    QTest::newRow("rule operand") << file({block(0x88, QByteArray::fromHex("0402"))})
                                  << "numerus rules: operand cut off at offset 21";
    QTest::newRow("rule joiner") << file({block(0x88, QByteArray::fromHex("010133"))})
                                 << "numerus rules: 0x33 at offset 23 where and, or or a new rule "
                                    "belongs";
    QTest::newRow("rule unended") << file({block(0x88, QByteArray::fromHex("0101fd"))})
                                  << "numerus rules end after a joining byte at offset 23";

    // Dependencies.
    QTest::newRow("dependency length cut off") << file({block(0x96, QByteArray::fromHex("0000"))})
                                               << "dependency name length at offset 21 cut off";
    QTest::newRow("dependency too long")
        << file({block(0x96, be32(40) + utf16(QStringLiteral("fr")))})
        << "dependency name at offset 21 is 40 bytes long; 4 bytes left, an even count needed";
    QTest::newRow("dependency odd") << file({block(0x96, be32(3) + "abc")})
                                    << "dependency name at offset 21 is 3 bytes long; 3 bytes "
                                       "left, an even count needed";
    QTest::newRow("null dependency")
        << file({block(0x96, be32(0xffffffffU))}) << "null dependency name at offset 21";
}

void TestQmFileCheck::malformedFile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, problem);
    const QmFileCheck check(bytes);
    QCOMPARE(check.verdict(), QmFileCheck::Verdict::Malformed);
    QVERIFY(!check.isValid());
    QCOMPARE(check.problem(), problem);
    QVERIFY(check.language().isEmpty());
    QVERIFY(check.dependencies().isEmpty());
    QCOMPARE(check.messageCount(), 0);
}

void TestQmFileCheck::everyTruncationOfAShippedFile()
{
    for (const char* code : {"en_US", "zh_CN", "zh_TW"}) {
        const QByteArray bytes = contentsOf(shippedFile(code));
        QVERIFY(bytes.size() > 1000);
        const QSet<int> ends = blockEnds(bytes);
        for (int size = 0; size < bytes.size(); ++size) {
            const QmFileCheck check(bytes.left(size));
            // A cut right after a block leaves whole blocks; the hashes without their messages
            // are the one such cut that still is wrong.
            const bool whole = size == 16 || ends.contains(size);
            if (!whole) {
                QVERIFY2(
                    !check.isValid(),
                    qPrintable(QStringLiteral("%1 cut at %2").arg(QLatin1String(code)).arg(size)));
                QVERIFY(!check.problem().isEmpty());
            }
        }
    }
}

void TestQmFileCheck::everyFlippedBitOfAShippedFileIsSafeForQt()
{
    // Whatever the check lets through, QTranslator must be able to look every key up in it.
    const QByteArray original = contentsOf(shippedFile("zh_CN"));
    QVERIFY(original.size() > 1000);
    const QList<QByteArray> keys = {"Add",      "Cancel", "Close", "Delete",
                                    "OK",       "Rename", "Edit",  "NameAlreadyExists",
                                    "Unknown?", ""};
    int valid = 0;
    for (int at = 0; at < original.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray bytes = original;
            bytes[at] = static_cast<char>(bytes.at(at) ^ (1 << bit));
            const QmFileCheck check(bytes);
            if (!check.isValid() || !check.dependencies().isEmpty()) {
                continue;
            }
            ++valid;
            QTranslator translator;
            if (!translator.load(reinterpret_cast<const uchar*>(bytes.constData()), bytes.size())) {
                continue;
            }
            for (const QByteArray& key : keys) {
                translator.translate("InputSource", key.constData(), "Widget");
                translator.translate("InputSource", key.constData(), nullptr);
                translator.translate("Other", key.constData(), "Widget");
            }
        }
    }
    QVERIFY(valid > 0);
}

QTEST_GUILESS_MAIN(TestQmFileCheck)
#include "tst_qmfilecheck.moc"
