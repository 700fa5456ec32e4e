// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

namespace quandel::trans {

/// Reads the layout of a compiled Qt Linguist file (.qm) held in memory and tells whether every
/// length and offset in it stays inside the file, so that QTranslator can be given the bytes.
/// QTranslator trusts the lengths it reads: a single wrong length makes a lookup read far past
/// the file. Internal to the translator module.
///
/// What is checked: the magic number; that the tagged blocks (language, hashes, messages,
/// contexts, numerus rules, dependencies) follow one another to the exact end of the file, each
/// kind at most once, none empty and none of an unknown kind; in the messages block, that it is
/// a sequence of records, each a list of known fields whose lengths stay inside the block and
/// which ends with an end mark; that every hash entry points at the start of a record and that
/// the hash table is sorted; that the contexts table and its name lists stay inside their
/// block; that the numerus rules form complete expressions; that the dependencies are a list of
/// whole strings.
///
/// A plain value computed once by the constructor; any thread.
class QmFileCheck
{
public:
    enum class Verdict
    {
        Valid,     ///< every check passed
        NotQmFile, ///< too short for the magic number, or another magic number
        Malformed  ///< a .qm file whose layout is broken; problem() says where
    };

    /// Checks `bytes`; they are read only during the call.
    explicit QmFileCheck(const QByteArray& bytes);
    ~QmFileCheck();

    QmFileCheck(const QmFileCheck&) = delete;
    QmFileCheck& operator=(const QmFileCheck&) = delete;

    Verdict verdict() const;

    /// True when verdict() is Valid.
    bool isValid() const;

    /// What is wrong and at which byte offset of the file; empty when valid.
    QString problem() const;

    /// The language the file records; empty when it records none or is not valid.
    QString language() const;

    /// The files the file names as dependencies, in order; empty when it is not valid.
    QStringList dependencies() const;

    /// How many message records the messages block holds; 0 when it is not valid.
    int messageCount() const;

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace quandel::trans
