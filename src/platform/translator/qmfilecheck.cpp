// SPDX-License-Identifier: MIT
#include "qmfilecheck.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

namespace quandel::trans {

namespace {

// The layout below is the one lrelease writes and QTranslator reads (Qt 5): a magic number,
// then blocks of one tag byte, a big-endian 32-bit length and that many bytes.
constexpr std::array<uint8_t, 16> magic = {0x3c, 0xb8, 0x64, 0x18, 0xca, 0xef, 0x9c, 0x95,
                                           0xcd, 0x21, 0x1c, 0xbf, 0x60, 0xa1, 0xbd, 0xdd};
constexpr std::size_t blockHeaderSize = 5;

enum BlockTag : uint8_t
{
    ContextsBlock = 0x2f,
    HashesBlock = 0x42,
    MessagesBlock = 0x69,
    NumerusRulesBlock = 0x88,
    DependenciesBlock = 0x96,
    LanguageBlock = 0xa7
};

// The fields of one message record.
enum FieldTag : uint8_t
{
    EndField = 1,
    TranslationField = 3,
    Obsolete1Field = 5,
    SourceTextField = 6,
    ContextField = 7,
    CommentField = 8
};

// A translation whose text is null; QTranslator reads it as no text.
constexpr uint32_t nullStringLength = 0xffffffffU;
constexpr std::size_t hashEntrySize = 8;

// The byte code of numerus rules.
constexpr uint8_t ruleOperatorMask = 0x07;
constexpr uint8_t ruleEqual = 0x01;
constexpr uint8_t ruleBetween = 0x04;
constexpr uint8_t ruleModifierBits = 0x08 | 0x10 | 0x20 | 0x40;
constexpr uint8_t ruleAnd = 0xfd;
constexpr uint8_t ruleOr = 0xfe;
constexpr uint8_t ruleNew = 0xff;

struct Block
{
    const uint8_t* data = nullptr;
    std::size_t size = 0;
    // Offset of the block's data in the file, for the messages.
    std::size_t offset = 0;
    bool present = false;
};

uint16_t read16(const uint8_t* p)
{
    return static_cast<uint16_t>((p[0] << 8) | p[1]);
}

uint32_t read32(const uint8_t* p)
{
    return (static_cast<uint32_t>(p[0]) << 24) | (static_cast<uint32_t>(p[1]) << 16) |
           (static_cast<uint32_t>(p[2]) << 8) | static_cast<uint32_t>(p[3]);
}

const char* blockName(uint8_t tag)
{
    switch (tag) {
    case ContextsBlock:
        return "contexts";
    case HashesBlock:
        return "hashes";
    case MessagesBlock:
        return "messages";
    case NumerusRulesBlock:
        return "numerus rules";
    case DependenciesBlock:
        return "dependencies";
    case LanguageBlock:
        return "language";
    default:
        return nullptr;
    }
}

const char* fieldName(uint8_t tag)
{
    switch (tag) {
    case TranslationField:
        return "translation";
    case SourceTextField:
        return "source text";
    case ContextField:
        return "context";
    case CommentField:
        return "comment";
    default:
        return "field";
    }
}

QString hex(uint32_t value)
{
    return QStringLiteral("0x%1").arg(value, 2, 16, QLatin1Char('0'));
}

} // namespace

struct QmFileCheck::Impl
{
    explicit Impl(const QByteArray& bytes);

    // Each returns an empty optional when the part is sound, or what is wrong.
    std::optional<QString> readBlocks();
    std::optional<QString> checkMessages();
    std::optional<QString> checkHashes();
    std::optional<QString> checkContexts();
    std::optional<QString> checkNumerusRules();
    std::optional<QString> checkDependencies();

    Block* blockOf(uint8_t tag);

    const uint8_t* file = nullptr;
    std::size_t fileSize = 0;
    Block contexts;
    Block hashes;
    Block messages;
    Block numerusRules;
    Block dependencyList;
    Block languageName;
    // Offsets of the records in the messages block, ascending.
    std::vector<uint32_t> recordStarts;

    Verdict verdict = Verdict::Malformed;
    QString problem;
    QString language;
    QStringList dependencies;
};

QmFileCheck::Impl::Impl(const QByteArray& bytes)
    : file(reinterpret_cast<const uint8_t*>(bytes.constData()))
    , fileSize(static_cast<std::size_t>(bytes.size()))
{
    if (fileSize < magic.size()) {
        verdict = Verdict::NotQmFile;
        problem = QStringLiteral("%1 bytes, shorter than the %2-byte magic number")
                      .arg(fileSize)
                      .arg(magic.size());
        return;
    }
    if (std::memcmp(file, magic.data(), magic.size()) != 0) {
        verdict = Verdict::NotQmFile;
        problem = QStringLiteral("no magic number of a compiled language file at offset 0");
        return;
    }
    for (auto step : {&Impl::readBlocks, &Impl::checkMessages, &Impl::checkHashes,
                      &Impl::checkContexts, &Impl::checkNumerusRules, &Impl::checkDependencies}) {
        if (std::optional<QString> wrong = (this->*step)()) {
            verdict = Verdict::Malformed;
            problem = *wrong;
            dependencies.clear();
            recordStarts.clear();
            return;
        }
    }
    if (languageName.present) {
        language = QString::fromUtf8(reinterpret_cast<const char*>(languageName.data),
                                     static_cast<int>(languageName.size));
    }
    verdict = Verdict::Valid;
}

Block* QmFileCheck::Impl::blockOf(uint8_t tag)
{
    switch (tag) {
    case ContextsBlock:
        return &contexts;
    case HashesBlock:
        return &hashes;
    case MessagesBlock:
        return &messages;
    case NumerusRulesBlock:
        return &numerusRules;
    case DependenciesBlock:
        return &dependencyList;
    case LanguageBlock:
        return &languageName;
    default:
        return nullptr;
    }
}

std::optional<QString> QmFileCheck::Impl::readBlocks()
{
    // QTranslator stops at an empty block or a zero tag and ignores a few trailing bytes; a
    // file written by lrelease has none of these, so they are refused rather than guessed at.
    std::size_t position = magic.size();
    while (position < fileSize) {
        const std::size_t left = fileSize - position;
        if (left < blockHeaderSize) {
            return QStringLiteral("block header at offset %1 cut off: %2 bytes left, %3 needed")
                .arg(position)
                .arg(left)
                .arg(blockHeaderSize);
        }
        const uint8_t tag = file[position];
        const uint32_t length = read32(file + position + 1);
        Block* const block = blockOf(tag);
        if (block == nullptr) {
            return QStringLiteral("unknown block tag %1 at offset %2").arg(hex(tag)).arg(position);
        }
        if (block->present) {
            return QStringLiteral("second %1 block at offset %2")
                .arg(QLatin1String(blockName(tag)))
                .arg(position);
        }
        if (length == 0) {
            return QStringLiteral("empty %1 block at offset %2")
                .arg(QLatin1String(blockName(tag)))
                .arg(position);
        }
        const std::size_t dataOffset = position + blockHeaderSize;
        if (length > fileSize - dataOffset) {
            return QStringLiteral(
                       "%1 block at offset %2 is %3 bytes long, but only %4 bytes follow")
                .arg(QLatin1String(blockName(tag)))
                .arg(position)
                .arg(length)
                .arg(fileSize - dataOffset);
        }
        block->data = file + dataOffset;
        block->size = length;
        block->offset = dataOffset;
        block->present = true;
        position = dataOffset + length;
    }
    return std::nullopt;
}

std::optional<QString> QmFileCheck::Impl::checkMessages()
{
    // QTranslator reads a record's fields one after the other, trusting each length, until the
    // end mark; it also reads one byte past an empty comment. A record therefore has to end
    // with its end mark inside the block.
    const uint8_t* const data = messages.data;
    const std::size_t size = messages.size;
    std::size_t position = 0;
    while (position < size) {
        recordStarts.push_back(static_cast<uint32_t>(position));
        const std::size_t recordOffset = messages.offset + position;
        for (bool ended = false; !ended;) {
            if (position >= size) {
                return QStringLiteral("message record at offset %1 has no end mark before the "
                                      "end of the messages block")
                    .arg(recordOffset);
            }
            const std::size_t fieldOffset = messages.offset + position;
            const uint8_t tag = data[position++];
            switch (tag) {
            case EndField:
                ended = true;
                break;
            case Obsolete1Field:
                if (size - position < 4) {
                    return QStringLiteral("field at offset %1 cut off by the end of the messages "
                                          "block")
                        .arg(fieldOffset);
                }
                position += 4;
                break;
            case TranslationField:
            case SourceTextField:
            case ContextField:
            case CommentField: {
                if (size - position < 4) {
                    return QStringLiteral("length of the %1 at offset %2 cut off by the end of "
                                          "the messages block")
                        .arg(QLatin1String(fieldName(tag)))
                        .arg(fieldOffset);
                }
                const uint32_t length = read32(data + position);
                position += 4;
                if (tag == TranslationField && length == nullStringLength) {
                    break;
                }
                if (length > size - position) {
                    return QStringLiteral("the %1 at offset %2 is %3 bytes long, but the messages "
                                          "block has only %4 bytes left")
                        .arg(QLatin1String(fieldName(tag)))
                        .arg(fieldOffset)
                        .arg(length)
                        .arg(size - position);
                }
                if (tag == TranslationField && length % 2 != 0) {
                    return QStringLiteral("the translation at offset %1 has an odd length (%2) "
                                          "for UTF-16 text")
                        .arg(fieldOffset)
                        .arg(length);
                }
                position += length;
                break;
            }
            default:
                return QStringLiteral("unknown field tag %1 at offset %2 in a message record")
                    .arg(hex(tag))
                    .arg(fieldOffset);
            }
        }
    }
    return std::nullopt;
}

std::optional<QString> QmFileCheck::Impl::checkHashes()
{
    if (!hashes.present) {
        return std::nullopt;
    }
    if (hashes.size % hashEntrySize != 0) {
        return QStringLiteral("hashes block at offset %1 is %2 bytes long, not a whole number of "
                              "%3-byte entries")
            .arg(hashes.offset - blockHeaderSize)
            .arg(hashes.size)
            .arg(hashEntrySize);
    }
    if (!messages.present) {
        return QStringLiteral("hashes block at offset %1 without a messages block")
            .arg(hashes.offset - blockHeaderSize);
    }
    // Lookups search the table by halving it, so it must be sorted by hash.
    uint32_t previousHash = 0;
    for (std::size_t entry = 0; entry < hashes.size; entry += hashEntrySize) {
        const uint32_t hash = read32(hashes.data + entry);
        const uint32_t target = read32(hashes.data + entry + 4);
        const std::size_t entryOffset = hashes.offset + entry;
        if (entry > 0 && hash < previousHash) {
            return QStringLiteral("hash table not sorted at offset %1").arg(entryOffset);
        }
        previousHash = hash;
        if (target >= messages.size) {
            return QStringLiteral("hash entry at offset %1 points to %2, outside the %3-byte "
                                  "messages block")
                .arg(entryOffset)
                .arg(target)
                .arg(messages.size);
        }
        if (!std::binary_search(recordStarts.begin(), recordStarts.end(), target)) {
            return QStringLiteral("hash entry at offset %1 points into the middle of a message "
                                  "record (messages block offset %2)")
                .arg(entryOffset)
                .arg(target);
        }
    }
    return std::nullopt;
}

std::optional<QString> QmFileCheck::Impl::checkContexts()
{
    // A table of 16-bit offsets, indexed by the context's hash modulo the table size, into lists
    // of length-prefixed names, each list ended by a zero length.
    if (!contexts.present) {
        return std::nullopt;
    }
    const std::size_t blockOffset = contexts.offset - blockHeaderSize;
    if (contexts.size < 2) {
        return QStringLiteral("contexts block at offset %1 too short for its table size")
            .arg(blockOffset);
    }
    const std::size_t tableSize = read16(contexts.data);
    if (tableSize == 0) {
        return QStringLiteral("contexts block at offset %1 has a table of size 0").arg(blockOffset);
    }
    const std::size_t listsStart = 2 + 2 * tableSize;
    if (listsStart > contexts.size) {
        return QStringLiteral("contexts table at offset %1 has %2 entries, more than its block "
                              "holds")
            .arg(contexts.offset)
            .arg(tableSize);
    }
    for (std::size_t slot = 0; slot < tableSize; ++slot) {
        const std::size_t listOffset = read16(contexts.data + 2 + 2 * slot);
        if (listOffset == 0) {
            continue;
        }
        std::size_t position = listsStart + 2 * listOffset;
        for (;;) {
            if (position >= contexts.size) {
                return QStringLiteral("context list of table entry %1 runs past the end of the "
                                      "contexts block at offset %2")
                    .arg(slot)
                    .arg(blockOffset);
            }
            const std::size_t nameLength = contexts.data[position++];
            if (nameLength == 0) {
                break;
            }
            if (nameLength > contexts.size - position) {
                return QStringLiteral("context name at offset %1 runs past the end of the "
                                      "contexts block")
                    .arg(contexts.offset + position - 1);
            }
            position += nameLength;
        }
    }
    return std::nullopt;
}

std::optional<QString> QmFileCheck::Impl::checkNumerusRules()
{
    // Rules separated by a new-rule byte; each rule is comparisons joined by and / or; each
    // comparison is an operator byte and one operand, two for "between".
    if (!numerusRules.present) {
        return std::nullopt;
    }
    const uint8_t* const data = numerusRules.data;
    const std::size_t size = numerusRules.size;
    std::size_t position = 0;
    for (;;) {
        const uint8_t opcode = data[position];
        const uint8_t comparison = opcode & ruleOperatorMask;
        if ((opcode & ~(ruleOperatorMask | ruleModifierBits)) != 0 || comparison < ruleEqual ||
            comparison > ruleBetween) {
            return QStringLiteral("numerus rules: unknown operator %1 at offset %2")
                .arg(hex(opcode))
                .arg(numerusRules.offset + position);
        }
        const std::size_t operands = comparison == ruleBetween ? 2 : 1;
        if (size - position - 1 < operands) {
            return QStringLiteral("numerus rules: operand cut off at offset %1")
                .arg(numerusRules.offset + position);
        }
        position += 1 + operands;
        if (position == size) {
            return std::nullopt;
        }
        const uint8_t joiner = data[position];
        if (joiner != ruleAnd && joiner != ruleOr && joiner != ruleNew) {
            return QStringLiteral("numerus rules: %1 at offset %2 where and, or or a new rule "
                                  "belongs")
                .arg(hex(joiner))
                .arg(numerusRules.offset + position);
        }
        ++position;
        if (position == size) {
            return QStringLiteral("numerus rules end after a joining byte at offset %1")
                .arg(numerusRules.offset + position - 1);
        }
    }
}

std::optional<QString> QmFileCheck::Impl::checkDependencies()
{
    // Strings as QDataStream writes them: a 32-bit byte count, then UTF-16 big-endian text.
    if (!dependencyList.present) {
        return std::nullopt;
    }
    const uint8_t* const data = dependencyList.data;
    const std::size_t size = dependencyList.size;
    std::size_t position = 0;
    while (position < size) {
        const std::size_t entryOffset = dependencyList.offset + position;
        if (size - position < 4) {
            return QStringLiteral("dependency name length at offset %1 cut off").arg(entryOffset);
        }
        const uint32_t length = read32(data + position);
        position += 4;
        if (length == nullStringLength) {
            return QStringLiteral("null dependency name at offset %1").arg(entryOffset);
        }
        if (length > size - position || length % 2 != 0) {
            return QStringLiteral("dependency name at offset %1 is %2 bytes long; %3 bytes left, "
                                  "an even count needed")
                .arg(entryOffset)
                .arg(length)
                .arg(size - position);
        }
        QString name(static_cast<int>(length / 2), Qt::Uninitialized);
        for (std::size_t index = 0; index < length / 2; ++index) {
            name[static_cast<int>(index)] = QChar(read16(data + position + 2 * index));
        }
        dependencies.append(name);
        position += length;
    }
    return std::nullopt;
}

QmFileCheck::QmFileCheck(const QByteArray& bytes)
    : d(std::make_unique<Impl>(bytes))
{}

QmFileCheck::~QmFileCheck() = default;

QmFileCheck::Verdict QmFileCheck::verdict() const
{
    return d->verdict;
}

bool QmFileCheck::isValid() const
{
    return d->verdict == Verdict::Valid;
}

QString QmFileCheck::problem() const
{
    return d->problem;
}

QString QmFileCheck::language() const
{
    return d->language;
}

QStringList QmFileCheck::dependencies() const
{
    return d->dependencies;
}

int QmFileCheck::messageCount() const
{
    return static_cast<int>(d->recordStarts.size());
}

} // namespace quandel::trans
